# The Debian package: cpack -G DEB in the build folder. To be included behind all install rules.
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME vornic)
set(CPACK_PACKAGE_VENDOR "The Vornic developers")
set(CPACK_PACKAGE_CONTACT "The Vornic developers <vornic@kavlor.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "screen recorder for the Linux desktop")
set(CPACK_PACKAGE_DESCRIPTION
  "Vornic records the main display, or a rectangle of it, with the pointer and
with the sound of a microphone or of the system, and gives an mp4 that plays
everywhere.
.
It records from a window with one button, or from the command line. The
rectangle is placed with the mouse, and a text or a picture can be put on
the movie. A screen that stands still costs next to nothing, and whatever
ends a recording, a full disk or a signal, leaves a complete movie.
.
It records X11 and Wayland sessions; on Wayland through the desktop's
ScreenCast portal, which asks which monitor it may show.")
set(CPACK_RESOURCE_FILE_LICENSE "${PROJECT_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/finish-deb.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION video)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
if(DPKG_SHLIBDEPS)
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
endif()
# The toolkit's plugin that writes the TIFF data of the picture well, and lets a logo be a TIFF or WebP picture.
set(CPACK_DEBIAN_PACKAGE_DEPENDS qt6-image-formats-plugins)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
  "default-dbus-session-bus | dbus-session-bus, pulseaudio | pipewire-pulse, xdg-utils, qt6-translations-l10n, qt6-wayland")
# By which Wayland desktops hand out their screen; those that do have them.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "xdg-desktop-portal, wireplumber")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)

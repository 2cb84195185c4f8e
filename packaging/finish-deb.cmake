# Run by cpack over what is installed, before it becomes a Debian package: what Debian has in other places, or in
# addition to what every installation has.
set(root "${CPACK_TEMPORARY_DIRECTORY}/usr/share")
set(doc "${root}/doc/vornic")

# Its zsh looks into no other folder of packages.
file(MAKE_DIRECTORY "${root}/zsh/vendor-completions")
file(RENAME "${root}/zsh/site-functions/_vornic" "${root}/zsh/vendor-completions/_vornic")
file(REMOVE_RECURSE "${root}/zsh/site-functions")

file(REMOVE "${doc}/LICENSE")
file(COPY "${CMAKE_CURRENT_LIST_DIR}/copyright" DESTINATION "${doc}")

function(compress source destination)
  execute_process(COMMAND gzip -9nc "${source}" OUTPUT_FILE "${destination}" COMMAND_ERROR_IS_FATAL ANY)
  file(CHMOD "${destination}" PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
endfunction()

compress("${doc}/CHANGELOG.md" "${doc}/changelog.gz")
file(REMOVE "${doc}/CHANGELOG.md")
string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
file(WRITE "${doc}/changelog.Debian" "vornic (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium

  * What is new in this version stands in changelog.gz.

 -- ${CPACK_PACKAGE_CONTACT}  ${date}
")
compress("${doc}/changelog.Debian" "${doc}/changelog.Debian.gz")
file(REMOVE "${doc}/changelog.Debian")

# Whatever the umask of who packs.
file(CHMOD_RECURSE "${CPACK_TEMPORARY_DIRECTORY}/usr" DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

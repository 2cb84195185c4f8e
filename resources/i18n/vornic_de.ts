<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>vornic</name>
    <message>
        <source>there is no such file</source>
        <translation>diese Datei gibt es nicht</translation>
    </message>
    <message>
        <source>it is not a regular file</source>
        <translation>es ist keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>Recording for %1 s; Ctrl-C stops it earlier.
</source>
        <translation>Aufnahme für %1 s; Strg-C beendet sie früher.
</translation>
    </message>
    <message>
        <source>Recording; Ctrl-C stops it.
</source>
        <translation>Aufnahme läuft; Strg-C beendet sie.
</translation>
    </message>
    <message>
        <source>Writing the movie %1 %2 %, %3 left</source>
        <translation>Film wird geschrieben %1 %2 %, noch %3</translation>
    </message>
    <message>
        <source>Writing the movie: %1 %, %2 left
</source>
        <translation>Film wird geschrieben: %1 %, noch %2
</translation>
    </message>
    <message>
        <source>Recording the screen</source>
        <translation>Der Bildschirm wird aufgenommen</translation>
    </message>
    <message>
        <source>%1 is a folder; the movie needs a file name.</source>
        <translation>%1 ist ein Ordner; der Film braucht einen Dateinamen.</translation>
    </message>
    <message>
        <source>The folder %1 does not exist.</source>
        <translation>Den Ordner %1 gibt es nicht.</translation>
    </message>
    <message>
        <source>The folder %1 cannot be written to: %2.</source>
        <translation>In den Ordner %1 kann nicht geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>The recording needs the folder %1, which cannot be written to: %2.</source>
        <translation>Die Aufnahme braucht den Ordner %1, in den nicht geschrieben werden kann: %2.</translation>
    </message>
    <message>
        <source>A recording stops when less than %1 is free for it in %2, and only %3 is.</source>
        <translation>Eine Aufnahme endet, wenn in %2 weniger als %1 frei ist, und frei ist nur %3.</translation>
    </message>
    <message>
        <source>A recording needs %1 free in %2, and only %3 is; --ignore-low-space records all the same, until %4 is left.</source>
        <translation>Eine Aufnahme braucht %1 freien Platz in %2, und frei ist nur %3; --ignore-low-space nimmt trotzdem auf, bis noch %4 übrig ist.</translation>
    </message>
    <message>
        <source>There is no audio input device; is the sound server running?</source>
        <translation>Es gibt kein Audio-Eingabegerät; läuft der Soundserver?</translation>
    </message>
    <message>
        <source>The region %1,%2,%3,%4 lies off the display, which has %5x%6 pixels.</source>
        <translation>Der Bereich %1,%2,%3,%4 liegt außerhalb des Bildschirms mit %5x%6 Pixeln.</translation>
    </message>
    <message>
        <source>%1 exists; --overwrite replaces it.</source>
        <translation>%1 gibt es schon; --overwrite ersetzt die Datei.</translation>
    </message>
    <message>
        <source>%1 frames grabbed, %2 frames written, %3 frames skipped, %4 s of audio</source>
        <translation>%1 Bilder aufgenommen, %2 Bilder geschrieben, %3 Bilder ausgelassen, %4 s Ton</translation>
    </message>
    <message>
        <source>There is no audio encoder with the number %1.</source>
        <translation>Es gibt keinen Audio-Encoder mit der Nummer %1.</translation>
    </message>
    <message>
        <source>The AAC audio encoder is missing on this system.</source>
        <translation>Der AAC-Encoder fehlt auf diesem System.</translation>
    </message>
    <message>
        <source>The sound could not be encoded: %1.</source>
        <translation>Der Ton konnte nicht kodiert werden: %1.</translation>
    </message>
    <message>
        <source>The disk is full: the movie could not be written to %1.</source>
        <translation>Der Datenträger ist voll: Der Film konnte nicht nach %1 geschrieben werden.</translation>
    </message>
    <message>
        <source>The movie is larger than the file system allows: it could not be written to %1.</source>
        <translation>Der Film ist größer, als das Dateisystem erlaubt: Er konnte nicht nach %1 geschrieben werden.</translation>
    </message>
    <message>
        <source>You have no permission to write movies to the folder %1.</source>
        <translation>Sie dürfen in den Ordner %1 keine Filme schreiben.</translation>
    </message>
    <message>
        <source>The movie could not be written to %1: %2.</source>
        <translation>Der Film konnte nicht nach %1 geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>The recording holds no frames.</source>
        <translation>Die Aufnahme enthält keine Bilder.</translation>
    </message>
    <message>
        <source>There is no movie format with the number %1.</source>
        <translation>Es gibt kein Filmformat mit der Nummer %1.</translation>
    </message>
    <message>
        <source>There is not enough memory to write the movie.</source>
        <translation>Der Arbeitsspeicher reicht nicht, um den Film zu schreiben.</translation>
    </message>
    <message>
        <source>There is no video encoder with the number %1.</source>
        <translation>Es gibt keinen Video-Encoder mit der Nummer %1.</translation>
    </message>
    <message>
        <source>The H.264 video encoder (libx264) is missing on this system.</source>
        <translation>Der H.264-Encoder (libx264) fehlt auf diesem System.</translation>
    </message>
    <message>
        <source>The video encoder cannot make a movie of %1 pixels: %2.</source>
        <translation>Der Video-Encoder kann keinen Film von %1 Pixeln machen: %2.</translation>
    </message>
    <message>
        <source>The video encoder failed: %1.</source>
        <translation>Der Video-Encoder ist gescheitert: %1.</translation>
    </message>
    <message>
        <source>This build of Vornic cannot record: it was made without support for any kind of display.</source>
        <translation>Diese Fassung von Vornic kann nicht aufnehmen: Sie wurde ohne Unterstützung für Bildschirme gebaut.</translation>
    </message>
    <message>
        <source>The display is switched off by the environment variable VORNIC_DISPLAY.</source>
        <translation>Der Bildschirm ist durch die Umgebungsvariable VORNIC_DISPLAY abgeschaltet.</translation>
    </message>
    <message>
        <source>VORNIC_DISPLAY names the display backend &quot;%1&quot;, but there are only: %2.</source>
        <translation>VORNIC_DISPLAY nennt „%1“, aber es gibt nur: %2.</translation>
    </message>
    <message>
        <source>Sound is switched off by the environment variable VORNIC_AUDIO.</source>
        <translation>Der Ton ist durch die Umgebungsvariable VORNIC_AUDIO abgeschaltet.</translation>
    </message>
    <message>
        <source>VORNIC_AUDIO names the sound backend &quot;%1&quot;, but there are only: %2.</source>
        <translation>VORNIC_AUDIO nennt „%1“, aber es gibt nur: %2.</translation>
    </message>
    <message>
        <source>Cannot connect to the X11 display &quot;%1&quot;.</source>
        <translation>Keine Verbindung zum X11-Bildschirm „%1“.</translation>
    </message>
    <message>
        <source>The X11 display &quot;%1&quot; belongs to another machine or is forwarded; only a display of this machine can be recorded.</source>
        <translation>Der X11-Bildschirm „%1“ gehört zu einem anderen Rechner oder ist weitergeleitet; nur ein Bildschirm dieses Rechners kann aufgenommen werden.</translation>
    </message>
    <message>
        <source>The X server lacks what recording its screen needs: %1.</source>
        <translation>Dem X-Server fehlt, was zum Aufnehmen nötig ist: %1.</translation>
    </message>
    <message>
        <source>This is a Wayland session, which shows its screen to no X11 program; log in to an X11 session to record.</source>
        <translation>Dies ist eine Wayland-Sitzung, die ihren Bildschirm keinem X11-Programm zeigt; melden Sie sich zum Aufnehmen in einer X11-Sitzung an.</translation>
    </message>
    <message>
        <source>The X server refuses to give pictures of its screen.</source>
        <translation>Der X-Server verweigert Bilder seines Bildschirms.</translation>
    </message>
    <message>
        <source>There is no audio input device &quot;%1&quot;. Available devices:
  %2</source>
        <translation>Es gibt kein Audio-Eingabegerät „%1“. Vorhandene Geräte:
  %2</translation>
    </message>
    <message>
        <source>Vornic is not recording.</source>
        <translation>Vornic nimmt gerade nicht auf.</translation>
    </message>
    <message>
        <source>vornic --help lists all commands and options.</source>
        <translation>vornic --help zeigt alle Befehle und Optionen.</translation>
    </message>
</context>
<context>
    <name>vornic::ColorPanel</name>
    <message>
        <source>Colour</source>
        <translation>Farbe</translation>
    </message>
</context>
<context>
    <name>vornic::CommandLine</name>
    <message>
        <source>--%1 &quot;%2&quot; cannot be read; it must be %3.</source>
        <translation>--%1 „%2“ ist nicht zu verstehen; erwartet wird %3.</translation>
    </message>
    <message>
        <source>X,Y,W,H in pixels, with W and H above 0</source>
        <translation>X,Y,W,H in Pixeln, mit W und H über 0</translation>
    </message>
    <message>
        <source>high or medium</source>
        <translation>high oder medium</translation>
    </message>
    <message>
        <source>a number of seconds above 0</source>
        <translation>eine Zahl von Sekunden über 0</translation>
    </message>
    <message>
        <source>full or rectangle</source>
        <translation>full oder rectangle</translation>
    </message>
    <message>
        <source>--%1 is an option of the window, not of &quot;vornic record&quot;.</source>
        <translation>--%1 ist eine Option des Fensters, nicht von „vornic record“.</translation>
    </message>
    <message>
        <source>&quot;vornic record&quot; needs the movie&apos;s file name: FILE.mp4.</source>
        <translation>„vornic record“ braucht den Dateinamen des Films: FILE.mp4.</translation>
    </message>
    <message>
        <source>&quot;vornic record&quot; takes one FILE.mp4, not %1.</source>
        <translation>„vornic record“ nimmt eine FILE.mp4, nicht %1.</translation>
    </message>
    <message>
        <source>The movie&apos;s file name &quot;%1&quot; must end in .mp4.</source>
        <translation>Der Dateiname „%1“ des Films muss auf .mp4 enden.</translation>
    </message>
    <message>
        <source>--%1 is an option of &quot;vornic record&quot;.</source>
        <translation>--%1 ist eine Option von „vornic record“.</translation>
    </message>
    <message>
        <source>Unknown command &quot;%1&quot;; the commands are record and devices.</source>
        <translation>Unbekannter Befehl „%1“; die Befehle sind record und devices.</translation>
    </message>
    <message>
        <source>&quot;vornic devices&quot; takes no arguments.</source>
        <translation>„vornic devices“ nimmt keine Argumente.</translation>
    </message>
</context>
<context>
    <name>vornic::LogoActions</name>
    <message>
        <source>The picture %1 cannot be read: %2.</source>
        <translation>Das Bild %1 kann nicht gelesen werden: %2.</translation>
    </message>
</context>
<context>
    <name>vornic::MainWindow</name>
    <message>
        <source>Record</source>
        <translation>Aufnahme</translation>
    </message>
    <message>
        <source>&amp;Full display</source>
        <translation>&amp;Ganzer Bildschirm</translation>
    </message>
    <message>
        <source>&amp;Selected rectangle</source>
        <translation>Gewähltes &amp;Rechteck</translation>
    </message>
    <message>
        <source>L&amp;eft</source>
        <translation>&amp;Links</translation>
    </message>
    <message>
        <source>Left edge of the rectangle, in pixels</source>
        <translation>Linker Rand des Rechtecks, in Pixeln</translation>
    </message>
    <message>
        <source>&amp;Bottom</source>
        <translation>&amp;Unten</translation>
    </message>
    <message>
        <source>Bottom edge of the rectangle, in pixels from the bottom of the display</source>
        <translation>Unterer Rand des Rechtecks, in Pixeln vom unteren Bildschirmrand</translation>
    </message>
    <message>
        <source>&amp;Width</source>
        <translation>&amp;Breite</translation>
    </message>
    <message>
        <source>Width of the rectangle, in pixels</source>
        <translation>Breite des Rechtecks, in Pixeln</translation>
    </message>
    <message>
        <source>Hei&amp;ght</source>
        <translation>&amp;Höhe</translation>
    </message>
    <message>
        <source>Height of the rectangle, in pixels</source>
        <translation>Höhe des Rechtecks, in Pixeln</translation>
    </message>
    <message>
        <source>&amp;Quality</source>
        <translation>&amp;Qualität</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>So&amp;und</source>
        <translation>To&amp;n</translation>
    </message>
    <message>
        <source>Audio input device</source>
        <translation>Audio-Eingabegerät</translation>
    </message>
    <message>
        <source>Afterwards</source>
        <translation>Danach</translation>
    </message>
    <message>
        <source>Show the movie in its fol&amp;der</source>
        <translation>Film im Ordner &amp;zeigen</translation>
    </message>
    <message>
        <source>&amp;Open the movie</source>
        <translation>Film ö&amp;ffnen</translation>
    </message>
    <message>
        <source>&amp;Logo</source>
        <translation>Log&amp;o</translation>
    </message>
    <message>
        <source>&amp;Text</source>
        <translation>&amp;Text</translation>
    </message>
    <message>
        <source>P&amp;icture</source>
        <translation>B&amp;ild</translation>
    </message>
    <message>
        <source>The logo&apos;s text</source>
        <translation>Text des Logos</translation>
    </message>
    <message>
        <source>Fo&amp;nt…</source>
        <translation>S&amp;chrift …</translation>
    </message>
    <message>
        <source>Fill &amp;colour</source>
        <translation>Füllfarbe</translation>
    </message>
    <message>
        <source>Fill colour</source>
        <translation>Füllfarbe</translation>
    </message>
    <message>
        <source>Outline colour</source>
        <translation>Umrissfarbe</translation>
    </message>
    <message>
        <source>The logo&apos;s picture</source>
        <translation>Bild des Logos</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Left edge of the logo, in pixels</source>
        <translation>Linker Rand des Logos, in Pixeln</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>Unten</translation>
    </message>
    <message>
        <source>Bottom edge of the logo, in pixels</source>
        <translation>Unterer Rand des Logos, in Pixeln</translation>
    </message>
    <message>
        <source>Sc&amp;ale</source>
        <translation>&amp;Maßstab</translation>
    </message>
    <message>
        <source>Scale of the logo</source>
        <translation>Maßstab des Logos</translation>
    </message>
    <message>
        <source>O&amp;pacity</source>
        <translation>&amp;Deckkraft</translation>
    </message>
    <message>
        <source>Opacity of the logo, 0 to 255</source>
        <translation>Deckkraft des Logos, 0 bis 255</translation>
    </message>
    <message>
        <source>Rotation</source>
        <translation>Drehung</translation>
    </message>
    <message>
        <source>Rotation of the logo, in degrees</source>
        <translation>Drehung des Logos, in Grad</translation>
    </message>
    <message>
        <source>&amp;Record</source>
        <translation>&amp;Aufnehmen</translation>
    </message>
    <message>
        <source>Busy</source>
        <translation>Beschäftigt</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>Hilf&amp;e</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>Hide</source>
        <translation>Ausblenden</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>About %1</source>
        <translation>Über %1</translation>
    </message>
    <message>
        <source>Hide %1</source>
        <translation>%1 ausblenden</translation>
    </message>
    <message>
        <source>Quit %1</source>
        <translation>%1 beenden</translation>
    </message>
    <message>
        <source>%1 Help</source>
        <translation>%1-Hilfe</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Hoch</translation>
    </message>
    <message>
        <source>Medium</source>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>Drop a picture here</source>
        <translation>Bild hierher ziehen</translation>
    </message>
    <message>
        <source>The picture %1 cannot be read: %2.</source>
        <translation>Das Bild %1 kann nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>&lt;b&gt;Vornic %1&lt;/b&gt;&lt;br&gt;Records the screen of the Linux desktop.</source>
        <translation>&lt;b&gt;Vornic %1&lt;/b&gt;&lt;br&gt;Nimmt den Bildschirm des Linux-Desktops auf.</translation>
    </message>
    <message>
        <source>Free software under the GNU General Public License, version 3 or later.</source>
        <translation>Freie Software unter der GNU General Public License, Version 3 oder neuer.</translation>
    </message>
    <message>
        <source>&amp;Choose a picture…</source>
        <translation>Bild &amp;wählen …</translation>
    </message>
</context>
<context>
    <name>vornic::RecordingSession</name>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>Disk free space is too low</source>
        <translation>Es ist zu wenig Speicherplatz frei</translation>
    </message>
    <message>
        <source>It will terminate recording because of disk space is insufficient</source>
        <translation>Die Aufnahme wird beendet, weil der Speicherplatz nicht reicht</translation>
    </message>
    <message>
        <source>waiting for audio</source>
        <translation>wartet auf Ton</translation>
    </message>
    <message>
        <source>Are you sure to quit it?</source>
        <translation>Wirklich beenden?</translation>
    </message>
    <message>
        <source>The application is recording video, video recording will stop if it quit.</source>
        <translation>Das Programm nimmt gerade auf; die Aufnahme endet, wenn es beendet wird.</translation>
    </message>
</context>
<context>
    <name>vornic::StopItem</name>
    <message>
        <source>Stop the recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>Stop recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>Vornic is recording: %1. Click to stop.</source>
        <translation>Vornic nimmt auf: %1. Klicken beendet die Aufnahme.</translation>
    </message>
    <message>
        <source>Recording: %1</source>
        <translation>Aufnahme: %1</translation>
    </message>
</context>
<context>
    <name>vornic::VNAlertFreeSpace</name>
    <message>
        <source>There is little free disk space</source>
        <translation>Es ist wenig Speicherplatz frei</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>A recording wants %1. It stops by itself when the disk is almost full, and what was recorded becomes a movie.</source>
        <translation>Eine Aufnahme braucht %1. Sie endet von selbst, wenn der Datenträger fast voll ist, und was aufgenommen wurde, wird ein Film.</translation>
    </message>
</context>
<context>
    <name>vornic::VNDragDropImageView</name>
    <message>
        <source>Pictures (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
    <message>
        <source>Choose a picture</source>
        <translation>Bild wählen</translation>
    </message>
</context>
<context>
    <name>vornic::VNEncoderProgress</name>
    <message>
        <source>Writing the movie</source>
        <translation>Der Film wird geschrieben</translation>
    </message>
    <message>
        <source>Percent written</source>
        <translation>Prozent geschrieben</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>%1 frames a second</source>
        <translation>%1 Bilder in der Sekunde</translation>
    </message>
    <message>
        <source>%1 left</source>
        <translation>noch %1</translation>
    </message>
    <message>
        <source>Working…</source>
        <translation>In Arbeit …</translation>
    </message>
</context>
<context>
    <name>vornic::VNHintWndCtroller</name>
    <message>
        <source>Recording starts now</source>
        <translation>Die Aufnahme beginnt jetzt</translation>
    </message>
    <message>
        <source>The window is minimised while the recording runs. To stop it, click the red icon or the bar with the clock.</source>
        <translation>Das Fenster ist solange minimiert. Das rote Symbol oder die Leiste mit der Uhr beendet die Aufnahme.</translation>
    </message>
    <message>
        <source>&amp;Show this again</source>
        <translation>Wieder &amp;zeigen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Start recording</source>
        <translation>Aufnahme beginnen</translation>
    </message>
</context>
<context>
    <name>vornic::VNRecoderView</name>
    <message>
        <source>Recorded rectangle</source>
        <translation>Aufgenommenes Rechteck</translation>
    </message>
</context>
<context>
    <name>vornic::VNRecoderWindow</name>
    <message>
        <source>Recorded rectangle</source>
        <translation>Aufgenommenes Rechteck</translation>
    </message>
</context>
<context>
    <name>vornic::WindowDesktop</name>
    <message>
        <source>The recording is finished</source>
        <translation>Die Aufnahme ist fertig</translation>
    </message>
    <message>
        <source>%1: %2 long, %3</source>
        <translation>%1: %2 lang, %3</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Recording the screen</source>
        <translation>Der Bildschirm wird aufgenommen</translation>
    </message>
</context>
<context>
    <name>vornic::WindowLogoPanels</name>
    <message>
        <source>Choose the logo&apos;s picture</source>
        <translation>Bild für das Logo wählen</translation>
    </message>
    <message>
        <source>Pictures (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>The logo&apos;s font</source>
        <translation>Schrift des Logos</translation>
    </message>
</context>
<context>
    <name>vornic::WindowQuestions</name>
    <message>
        <source>Save the recording as</source>
        <translation>Aufnahme speichern als</translation>
    </message>
    <message>
        <source>Movies (*.%1)</source>
        <translation>Filme (*.%1)</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>Give the recording up?</source>
        <translation>Die Aufnahme aufgeben?</translation>
    </message>
    <message>
        <source>It cannot be brought back.</source>
        <translation>Sie ist dann verloren.</translation>
    </message>
    <message>
        <source>Save elsewhere</source>
        <translation>Woanders speichern</translation>
    </message>
    <message>
        <source>Give up</source>
        <translation>Aufgeben</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Fehler</translation>
    </message>
</context>
</TS>

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
        <source>Writing the movie %1 %2 %, %3 left</source>
        <translation>Film wird geschrieben %1 %2 %, noch %3</translation>
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
        <source>Vornic is not recording.</source>
        <translation>Vornic nimmt gerade nicht auf.</translation>
    </message>
    <message>
        <source>vornic --help lists all commands and options.</source>
        <translation>vornic --help zeigt alle Befehle und Optionen.</translation>
    </message>
    <message>
        <source>Recording %1</source>
        <translation>Aufnahme %1</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>it has %1 × %2 pixels, which is too many</source>
        <translation>es hat %1 × %2 Pixel, das sind zu viele</translation>
    </message>
    <message>
        <source>%1  %2  cannot be read</source>
        <translation>%1  %2  ist nicht lesbar</translation>
    </message>
    <message>
        <source>%1  %2  %3  %4  %5 frames</source>
        <translation>%1  %2  %3  %4  %5 Bilder</translation>
    </message>
    <message>
        <source>There is no unfinished recording.</source>
        <translation>Es gibt keine unfertige Aufnahme.</translation>
    </message>
    <message>
        <source>Several recordings begin with %1: %2.</source>
        <translation>Mehrere Aufnahmen beginnen mit %1: %2.</translation>
    </message>
    <message>
        <source>Deleted the recording %1: %2 from %3.</source>
        <translation>Aufnahme %1 gelöscht: %2 vom %3.</translation>
    </message>
    <message>
        <source>Deleted the recording %1, which could not be read.</source>
        <translation>Aufnahme %1 gelöscht, die nicht lesbar war.</translation>
    </message>
    <message>
        <source>The movie that was written to %1 is not whole.</source>
        <translation>Der Film, der nach %1 geschrieben wurde, ist unvollständig.</translation>
    </message>
    <message>
        <source>The movie was not made: its writing was ended.</source>
        <translation>Der Film wurde nicht erstellt: Das Schreiben wurde beendet.</translation>
    </message>
    <message>
        <source>more than a day</source>
        <translation>mehr als einen Tag</translation>
    </message>
    <message>
        <source>less than a minute</source>
        <translation>weniger als eine Minute</translation>
    </message>
    <message>
        <source>%1 min</source>
        <translation>%1 min</translation>
    </message>
    <message>
        <source>%1 h</source>
        <translation>%1 h</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 h %2 min</translation>
    </message>
    <message>
        <source>%1, room for %2</source>
        <translation>%1, Platz für %2</translation>
    </message>
    <message>
        <source>At this rate there is room for %1 more: then the disk that holds %2 is too small for the movie.</source>
        <translation>Bei dieser Rate ist noch Platz für %1: Dann ist der Datenträger mit %2 zu klein für den Film.</translation>
    </message>
    <message>
        <source>At this rate there is room for %1 more: then the disk that holds %2 is almost full, and the recording ends by itself.</source>
        <translation>Bei dieser Rate ist noch Platz für %1: Dann ist der Datenträger mit %2 fast voll, und die Aufnahme endet von selbst.</translation>
    </message>
    <message>
        <source>The cache folder %1 lies in memory: the recording takes memory until its movie is written, and a power cut or a restart loses it.</source>
        <translation>Der Cache-Ordner %1 liegt im Arbeitsspeicher: Die Aufnahme belegt Arbeitsspeicher, bis ihr Film geschrieben ist, und geht bei Stromausfall oder Neustart verloren.</translation>
    </message>
    <message>
        <source>today, %1</source>
        <translation>heute, %1</translation>
    </message>
    <message>
        <source>yesterday, %1</source>
        <translation>gestern, %1</translation>
    </message>
    <message>
        <source>%1 recordings were not finished.</source>
        <translation>%1 Aufnahmen wurden nicht fertig.</translation>
    </message>
    <message>
        <source>A recording of %1 cannot be read any more.</source>
        <translation>Eine Aufnahme von %1 ist nicht mehr lesbar.</translation>
    </message>
    <message>
        <source>A recording of %1 from %2 was not finished.</source>
        <translation>Eine Aufnahme von %1 (%2) wurde nicht fertig.</translation>
    </message>
    <message>
        <source>Cannot be read any more
%1</source>
        <translation>Nicht mehr lesbar
%1</translation>
    </message>
    <message>
        <source>%1 long, with sound, %2</source>
        <translation>%1 lang, mit Ton, %2</translation>
    </message>
    <message>
        <source>%1 long, %2</source>
        <translation>%1 lang, %2</translation>
    </message>
    <message>
        <source>The recording %1 is in use by another Vornic.</source>
        <translation>Die Aufnahme %1 wird von einem anderen Vornic benutzt.</translation>
    </message>
    <message>
        <source>The recording %1 cannot be read: its journal is missing or damaged.</source>
        <translation>Die Aufnahme %1 kann nicht gelesen werden: Ihr Journal fehlt oder ist beschädigt.</translation>
    </message>
    <message>
        <source>The recording %1 cannot be read: its pictures are missing.</source>
        <translation>Die Aufnahme %1 kann nicht gelesen werden: Ihre Bilder fehlen.</translation>
    </message>
    <message>
        <source>There is no recording %1.</source>
        <translation>Es gibt keine Aufnahme %1.</translation>
    </message>
    <message>
        <source>The recording %1 could not be deleted: %2.</source>
        <translation>Die Aufnahme %1 konnte nicht gelöscht werden: %2.</translation>
    </message>
    <message>
        <source>Standard output could not be written: %1.</source>
        <translation>Auf die Standardausgabe konnte nicht geschrieben werden: %1.</translation>
    </message>
    <message>
        <source>Recording for %1 s; Ctrl-C stops it earlier.</source>
        <translation>Aufnahme über %1 s; Strg-C beendet sie früher.</translation>
    </message>
    <message>
        <source>Recording; Ctrl-C stops it.</source>
        <translation>Aufnahme läuft; Strg-C beendet sie.</translation>
    </message>
    <message>
        <source>No sound has come; the recording goes on without it.</source>
        <translation>Es ist kein Ton gekommen; die Aufnahme geht ohne ihn weiter.</translation>
    </message>
    <message>
        <source>The recording is being ended, and its movie is next; Ctrl-\ keeps it for later.</source>
        <translation>Die Aufnahme wird beendet, danach folgt ihr Film; Strg-\ hebt sie für später auf.</translation>
    </message>
    <message>
        <source>Writing the movie; Ctrl-C puts it off for later.</source>
        <translation>Der Film wird geschrieben; Strg-C verschiebt das auf später.</translation>
    </message>
    <message>
        <source>Writing the movie: %1 %, %2 left</source>
        <translation>Der Film wird geschrieben: %1 %, noch %2</translation>
    </message>
    <message>
        <source>vornic: The recording is kept: vornic recover %1 makes the movie.</source>
        <translation>vornic: Die Aufnahme bleibt erhalten: vornic recover %1 macht den Film.</translation>
    </message>
    <message>
        <source>Another file has come to stand in %1 and is kept; the movie is %2.</source>
        <translation>Unter %1 steht inzwischen eine andere Datei, die erhalten bleibt; der Film ist %2.</translation>
    </message>
    <message>
        <source>There is no audio input device &quot;%1&quot;. Available devices:</source>
        <translation>Es gibt kein Audio-Eingabegerät „%1“. Vorhandene Geräte:</translation>
    </message>
    <message>
        <source>No sound came: the movie has none.</source>
        <translation>Es kam kein Ton: Der Film hat keinen.</translation>
    </message>
    <message>
        <source>The movie is shorter than %1 s: the recording ended earlier.</source>
        <translation>Der Film ist kürzer als %1 s: die Aufnahme endete früher.</translation>
    </message>
    <message>
        <source>Vornic has to end: %1.</source>
        <translation>Vornic muss sich beenden: %1.</translation>
    </message>
    <message>
        <source>Vornic needs %1 threads, and the system does not give it so many: the limit of processes or of memory is reached.</source>
        <translation>Vornic braucht %1 Threads, und das System gibt nicht so viele her: Die Grenze für Prozesse oder für Speicher ist erreicht.</translation>
    </message>
    <message>
        <source>The display is gone: the recording ends with what it holds.</source>
        <translation>Der Bildschirm ist nicht mehr da: die Aufnahme endet mit dem, was sie enthält.</translation>
    </message>
    <message>
        <source>The display gives no picture any more: the recording ends with what it holds.</source>
        <translation>Der Bildschirm liefert kein Bild mehr: die Aufnahme endet mit dem, was sie enthält.</translation>
    </message>
    <message>
        <source>The display has %1x%2 pixels now, and the recorded rectangle lies off it: the recording ends with what it holds.</source>
        <translation>Der Bildschirm hat jetzt %1x%2 Pixel, und das aufgenommene Rechteck liegt außerhalb: die Aufnahme endet mit dem, was sie enthält.</translation>
    </message>
    <message>
        <source>There is a limit on the size of files, and the recording has reached it</source>
        <translation>Für die Größe von Dateien gibt es eine Grenze, und die Aufnahme hat sie erreicht</translation>
    </message>
    <message>
        <source>The recording could not be written to the disk: %1</source>
        <translation>Die Aufnahme konnte nicht auf den Datenträger geschrieben werden: %1</translation>
    </message>
    <message>
        <source>no reason was given</source>
        <translation>ein Grund wurde nicht genannt</translation>
    </message>
    <message>
        <source>The folder %1 lies on a volume that can only be read.</source>
        <translation>Der Ordner %1 liegt auf einem Datenträger, der nur gelesen werden kann.</translation>
    </message>
    <message>
        <source>The movie is larger than the file system, or a limit of this session, allows: it could not be written to %1.</source>
        <translation>Der Film ist größer, als das Dateisystem oder eine Grenze dieser Sitzung erlaubt: er konnte nicht nach %1 geschrieben werden.</translation>
    </message>
    <message>
        <source>%1 is no ordinary file; the movie needs another name.</source>
        <translation>%1 ist keine gewöhnliche Datei; der Film braucht einen anderen Namen.</translation>
    </message>
    <message>
        <source>%1 belongs to another user, and only that user can replace it in its folder.</source>
        <translation>%1 gehört einem anderen Benutzer, und nur dieser kann die Datei in ihrem Ordner ersetzen.</translation>
    </message>
    <message>
        <source>The audio input was gone for a time: the movie has no sound of it.</source>
        <translation>Der Toneingang war zeitweise nicht da: Für diese Zeit hat der Film keinen Ton.</translation>
    </message>
    <message>
        <source>Pictures or pieces of sound that could not be used: %1.</source>
        <translation>Bilder oder Tonstücke, die nicht zu verwenden waren: %1.</translation>
    </message>
    <message>
        <source>No movie can be written to %1: %2.</source>
        <translation>Nach %1 kann kein Film geschrieben werden: %2.</translation>
    </message>
    <message>
        <source>The folder %1, where recordings are kept, belongs to another user, or others can write to it: it is not used.</source>
        <translation>Der Ordner %1, in dem Aufnahmen liegen, gehört einem anderen Benutzer, oder andere können hineinschreiben: Er wird nicht benutzt.</translation>
    </message>
    <message>
        <source>The options cannot be saved: %1 cannot be written to.</source>
        <translation>Die Einstellungen können nicht gespeichert werden: %1 ist nicht beschreibbar.</translation>
    </message>
    <message>
        <source>there is not enough memory</source>
        <translation>der Speicher reicht nicht</translation>
    </message>
    <message>
        <source>The message bus %1 does not answer.</source>
        <translation>Der Nachrichtenbus %1 antwortet nicht.</translation>
    </message>
    <message>
        <source>The X server has not answered the window for ten seconds; it is closed.</source>
        <translation>Der X-Server hat dem Fenster zehn Sekunden lang nicht geantwortet; es wird geschlossen.</translation>
    </message>
    <message>
        <source>The X server has not answered for two seconds.</source>
        <translation>Der X-Server hat zwei Sekunden lang nicht geantwortet.</translation>
    </message>
    <message>
        <source>Vornic has to end, and cannot wait for the display any longer.</source>
        <translation>Vornic muss enden und kann nicht länger auf den Bildschirm warten.</translation>
    </message>
    <message>
        <source>The desktop was not allowed to show its screen to Vornic.</source>
        <translation>Dem Desktop wurde nicht erlaubt, Vornic seinen Bildschirm zu zeigen.</translation>
    </message>
    <message>
        <source>%1, paused</source>
        <translation>%1, angehalten</translation>
    </message>
    <message>
        <source>%1, recording</source>
        <translation>%1, Aufnahme läuft</translation>
    </message>
    <message>
        <source>Nothing is heard from %1.</source>
        <translation>Von %1 ist nichts zu hören.</translation>
    </message>
    <message>
        <source>Nothing was recorded.</source>
        <translation>Es wurde nichts aufgenommen.</translation>
    </message>
    <message>
        <source>There is no output whose sound could be recorded.</source>
        <translation>Es gibt keine Ausgabe, deren Ton aufgenommen werden könnte.</translation>
    </message>
    <message>
        <source>Vornic cannot record now: it writes a movie, or waits for an answer.</source>
        <translation>Vornic kann jetzt nicht aufnehmen: Es schreibt einen Film oder wartet auf eine Antwort.</translation>
    </message>
    <message>
        <source>Start or stop a recording</source>
        <translation>Aufnahme starten oder beenden</translation>
    </message>
    <message>
        <source>it has ended</source>
        <translation>es wurde beendet</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal gives no pictures of its screen.</source>
        <translation>Das Portal des Desktops gibt keine Bilder seines Bildschirms.</translation>
    </message>
    <message>
        <source>The desktop&apos;s portal gives no pictures of its screen: %1.</source>
        <translation>Das Portal des Desktops gibt keine Bilder seines Bildschirms: %1.</translation>
    </message>
    <message>
        <source>This desktop has no screen cast portal, through which its screen could be recorded.</source>
        <translation>Dieser Desktop hat kein Portal für Bildschirmaufnahmen (ScreenCast), über das sein Bildschirm aufgenommen werden könnte.</translation>
    </message>
    <message>
        <source>There is no Wayland session to record: the environment variable WAYLAND_DISPLAY is not set.</source>
        <translation>Es gibt keine Wayland-Sitzung, die aufgenommen werden könnte: Die Umgebungsvariable WAYLAND_DISPLAY ist nicht gesetzt.</translation>
    </message>
    <message>
        <source>The desktop sends no picture of its screen.</source>
        <translation>Der Desktop sendet kein Bild seines Bildschirms.</translation>
    </message>
    <message>
        <source>“%1” is gone; the other sound is recorded.</source>
        <translation>„%1“ ist weg; der andere Ton wird aufgenommen.</translation>
    </message>
    <message>
        <source>“%1” is back.</source>
        <translation>„%1“ ist wieder da.</translation>
    </message>
    <message>
        <source>The movie is as large as it may become; the recording ends.</source>
        <translation>Der Film ist so groß, wie er werden darf; die Aufnahme endet.</translation>
    </message>
    <message>
        <source>The movie is too large; it is written again with a lower bit rate.</source>
        <translation>Der Film ist zu groß; er wird mit niedrigerer Bitrate noch einmal geschrieben.</translation>
    </message>
    <message>
        <source>The movie is larger than it was to be.</source>
        <translation>Der Film ist größer, als er werden sollte.</translation>
    </message>
    <message>
        <source>“%1” was gone for a time: the movie has no sound of it.</source>
        <translation>„%1“ war eine Zeit lang weg: Der Film hat keinen Ton davon.</translation>
    </message>
    <message>
        <source>%1 left</source>
        <translation>noch %1</translation>
    </message>
    <message>
        <source>1 second left</source>
        <translation>noch 1 Sekunde</translation>
    </message>
    <message>
        <source>%1 seconds left</source>
        <translation>noch %1 Sekunden</translation>
    </message>
    <message>
        <source>1 minute left</source>
        <translation>noch 1 Minute</translation>
    </message>
    <message>
        <source>%1 minutes left</source>
        <translation>noch %1 Minuten</translation>
    </message>
    <message>
        <source>%1 hours, %2 minutes left</source>
        <translation>noch %1 Stunden, %2 Minuten</translation>
    </message>
    <message>
        <source>Vornic cannot record now: it is recording already, writes a movie, or waits for an answer.</source>
        <translation>Vornic kann jetzt nicht aufnehmen: Es nimmt schon auf, schreibt einen Film oder wartet auf eine Antwort.</translation>
    </message>
    <message>
        <source>The Vornic that runs does not answer.</source>
        <translation>Das laufende Vornic antwortet nicht.</translation>
    </message>
</context>
<context>
    <name>vornic::AudioInput</name>
    <message>
        <source>What the system plays</source>
        <translation>Was das System abspielt</translation>
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
        <source>&quot;vornic devices&quot; takes no arguments.</source>
        <translation>„vornic devices“ nimmt keine Argumente.</translation>
    </message>
    <message>
        <source>--record takes one FILE.mp4, not %1.</source>
        <translation>--record nimmt eine FILE.mp4, nicht %1.</translation>
    </message>
    <message>
        <source>--%1 is an option of &quot;vornic recover&quot;.</source>
        <translation>--%1 ist eine Option von „vornic recover“.</translation>
    </message>
    <message>
        <source>--%1 cannot be used here.</source>
        <translation>--%1 ist hier nicht möglich.</translation>
    </message>
    <message>
        <source>--%1 needs the id of a recording.</source>
        <translation>--%1 braucht die Kennung einer Aufnahme.</translation>
    </message>
    <message>
        <source>--delete takes one ID and nothing else.</source>
        <translation>--delete nimmt eine Kennung und nichts weiter.</translation>
    </message>
    <message>
        <source>&quot;vornic recover&quot; takes one ID and one FILE.mp4.</source>
        <translation>„vornic recover“ nimmt eine Kennung und eine DATEI.mp4.</translation>
    </message>
    <message>
        <source>The id of the recording is empty.</source>
        <translation>Die Kennung der Aufnahme ist leer.</translation>
    </message>
    <message>
        <source>Unknown command &quot;%1&quot;; the commands are record, recover and devices.</source>
        <translation>Unbekannter Befehl „%1“; es gibt record, recover und devices.</translation>
    </message>
    <message>
        <source>a number of seconds above 0, %1 at most</source>
        <translation>eine Zahl von Sekunden über 0, höchstens %1</translation>
    </message>
    <message>
        <source>--separate-tracks needs --audio and --system-audio.</source>
        <translation>--separate-tracks braucht --audio und --system-audio.</translation>
    </message>
    <message>
        <source>a size such as 700M or 1.5G, 1M at least</source>
        <translation>eine Größe wie 700M oder 1.5G, mindestens 1M</translation>
    </message>
</context>
<context>
    <name>vornic::Countdown</name>
    <message>
        <source>Countdown</source>
        <translation>Countdown</translation>
    </message>
    <message numerus="yes">
        <source>Recording begins in %n second(s)</source>
        <translation>
            <numerusform>Die Aufnahme beginnt in %n Sekunde</numerusform>
            <numerusform>Die Aufnahme beginnt in %n Sekunden</numerusform>
        </translation>
    </message>
    <message>
        <source>Esc cancels</source>
        <translation>Esc bricht ab</translation>
    </message>
    <message>
        <source>A click cancels</source>
        <translation>Ein Klick bricht ab</translation>
    </message>
</context>
<context>
    <name>vornic::ImagePanel</name>
    <message>
        <source>Pictures (%1)</source>
        <translation>Bilder (%1)</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
</context>
<context>
    <name>vornic::LogoActions</name>
    <message>
        <source>The picture %1 cannot be read: %2.</source>
        <translation>Das Bild %1 kann nicht gelesen werden: %2.</translation>
    </message>
    <message>
        <source>It has %1 × %2 pixels, more than a logo may have, and became the logo with %3 × %4.</source>
        <translation>Es hat %1 × %2 Pixel, mehr als ein Logo haben darf, und wurde mit %3 × %4 Pixeln zum Logo.</translation>
    </message>
    <message>
        <source>The picture was scaled down.</source>
        <translation>Das Bild wurde verkleinert.</translation>
    </message>
    <message>
        <source>The picture %1 was scaled down.</source>
        <translation>Das Bild %1 wurde verkleinert.</translation>
    </message>
</context>
<context>
    <name>vornic::MainWindow</name>
    <message>
        <source>Record</source>
        <translation>Aufnahme</translation>
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
    <message>
        <source>Record all of the main display</source>
        <translation>Den ganzen Hauptbildschirm aufnehmen</translation>
    </message>
    <message>
        <source>Full displa&amp;y</source>
        <translation>&amp;Ganzer Bildschirm</translation>
    </message>
    <message>
        <source>Record a rectangle that is placed with the mouse, or with the numbers below</source>
        <translation>Ein Rechteck aufnehmen, das mit der Maus oder mit den Zahlen darunter gesetzt wird</translation>
    </message>
    <message>
        <source>From the left edge of the display to the rectangle</source>
        <translation>Vom linken Rand des Bildschirms bis zum Rechteck</translation>
    </message>
    <message>
        <source>How wide the rectangle is</source>
        <translation>Breite des Rechtecks</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>From the top of the display to the rectangle</source>
        <translation>Vom oberen Rand des Bildschirms bis zum Rechteck</translation>
    </message>
    <message>
        <source>Top edge of the rectangle, in pixels from the top of the display</source>
        <translation>Oberer Rand des Rechtecks, in Pixeln vom oberen Rand des Bildschirms</translation>
    </message>
    <message>
        <source>How high the rectangle is</source>
        <translation>Höhe des Rechtecks</translation>
    </message>
    <message>
        <source>From the bottom of the display to the rectangle</source>
        <translation>Vom unteren Rand des Bildschirms bis zum Rechteck</translation>
    </message>
    <message>
        <source>Si&amp;ze</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Gives the rectangle a usual size; its middle stays where it is</source>
        <translation>Gibt dem Rechteck eine übliche Größe; seine Mitte bleibt, wo sie ist</translation>
    </message>
    <message>
        <source>Size of the rectangle</source>
        <translation>Größe des Rechtecks</translation>
    </message>
    <message>
        <source>Hides this window and lets you draw the rectangle, or click a window to take its frame</source>
        <translation>Blendet dieses Fenster aus; dann ziehen Sie das Rechteck auf oder klicken ein Fenster an, um seinen Rahmen zu übernehmen</translation>
    </message>
    <message>
        <source>Select o&amp;n screen…</source>
        <translation>Auf dem Bild&amp;schirm wählen …</translation>
    </message>
    <message>
        <source>Show a text or a picture in the movie</source>
        <translation>Einen Text oder ein Bild im Film zeigen</translation>
    </message>
    <message>
        <source>How many pictures a second are taken, and how finely they are compressed</source>
        <translation>Wie viele Bilder je Sekunde aufgenommen und wie fein sie komprimiert werden</translation>
    </message>
    <message>
        <source>Record sound with the movie</source>
        <translation>Ton mit aufnehmen</translation>
    </message>
    <message>
        <source>Countdown</source>
        <translation>Countdown</translation>
    </message>
    <message>
        <source>How long is counted down on the screen before a recording begins</source>
        <translation>Wie lange vor Beginn einer Aufnahme auf dem Bildschirm heruntergezählt wird</translation>
    </message>
    <message>
        <source>Countdown before a recording</source>
        <translation>Countdown vor einer Aufnahme</translation>
    </message>
    <message>
        <source>&amp;Key</source>
        <translation>&amp;Kürzel</translation>
    </message>
    <message>
        <source>Press the keys that are to start and stop a recording from any program; Backspace for none</source>
        <translation>Drücken Sie die Tasten, die eine Aufnahme aus jedem Programm heraus beginnen und beenden sollen; Rücktaste für keine</translation>
    </message>
    <message>
        <source>Key that starts and stops a recording</source>
        <translation>Tastenkürzel, das eine Aufnahme beginnt und beendet</translation>
    </message>
    <message>
        <source>Open the folder of the movie when it is finished</source>
        <translation>Den Ordner des Films öffnen, sobald er fertig ist</translation>
    </message>
    <message>
        <source>Play the movie when it is finished</source>
        <translation>Den Film abspielen, sobald er fertig ist</translation>
    </message>
    <message>
        <source>The logo is a text</source>
        <translation>Das Logo ist ein Text</translation>
    </message>
    <message>
        <source>The logo is a picture</source>
        <translation>Das Logo ist ein Bild</translation>
    </message>
    <message>
        <source>What the logo says</source>
        <translation>Was das Logo sagt</translation>
    </message>
    <message>
        <source>Some letters are drawn as other signs.</source>
        <translation>Manche Buchstaben erscheinen als andere Zeichen.</translation>
    </message>
    <message>
        <source>Make the text, with its font and colours, the picture of the logo</source>
        <translation>Den Text mit seiner Schrift und seinen Farben zum Bild des Logos machen</translation>
    </message>
    <message>
        <source>Make a picture of the text</source>
        <translation>Text in ein Bild verwandeln</translation>
    </message>
    <message>
        <source>Choose the font of the logo</source>
        <translation>Die Schrift des Logos wählen</translation>
    </message>
    <message>
        <source>&amp;Font…</source>
        <translation>S&amp;chrift …</translation>
    </message>
    <message>
        <source>The colour inside the letters</source>
        <translation>Die Farbe im Inneren der Buchstaben</translation>
    </message>
    <message>
        <source>The colour around the letters</source>
        <translation>Die Farbe um die Buchstaben herum</translation>
    </message>
    <message>
        <source>The logo; drop a picture here, or press it to choose one</source>
        <translation>Das Logo; ziehen Sie ein Bild hierher, oder klicken Sie, um eins zu wählen</translation>
    </message>
    <message>
        <source>Choose the picture of the logo from the disk</source>
        <translation>Das Bild des Logos von der Festplatte wählen</translation>
    </message>
    <message>
        <source>From the left edge of what is recorded to the logo</source>
        <translation>Vom linken Rand der Aufnahme bis zum Logo</translation>
    </message>
    <message>
        <source>From the bottom of what is recorded to the logo</source>
        <translation>Vom unteren Rand der Aufnahme bis zum Logo</translation>
    </message>
    <message>
        <source>How large the logo is; 1 is its own size</source>
        <translation>Wie groß das Logo ist; 1 ist seine eigene Größe</translation>
    </message>
    <message>
        <source>How much the logo hides of what is beneath it</source>
        <translation>Wie stark das Logo verdeckt, was darunter liegt</translation>
    </message>
    <message>
        <source>Opacity of the logo, in percent</source>
        <translation>Deckkraft des Logos, in Prozent</translation>
    </message>
    <message>
        <source>How far the logo is turned, counter-clockwise</source>
        <translation>Wie weit das Logo gegen den Uhrzeigersinn gedreht ist</translation>
    </message>
    <message>
        <source>Start recording: asks where the movie is kept</source>
        <translation>Aufnahme beginnen: fragt, wo der Film gespeichert wird</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Ohne</translation>
    </message>
    <message>
        <source>No audio input found</source>
        <translation>Kein Toneingang gefunden</translation>
    </message>
    <message>
        <source>Hold Ctrl, Alt or Super with it.</source>
        <translation>Bitte Strg, Alt oder Super dazu halten.</translation>
    </message>
    <message>
        <source>The device whose sound is recorded: %1</source>
        <translation>Das Gerät, dessen Ton aufgenommen wird: %1</translation>
    </message>
    <message>
        <source>This window covers part of the rectangle; minimise it to see all of it.</source>
        <translation>Dieses Fenster verdeckt einen Teil des Rechtecks; minimiert gibt es alles frei.</translation>
    </message>
    <message>
        <source>This window covers part of the logo; minimise it to see all of it.</source>
        <translation>Dieses Fenster verdeckt einen Teil des Logos; minimiert gibt es alles frei.</translation>
    </message>
    <message>
        <source>Sto&amp;p   %1</source>
        <translation>Sto&amp;pp   %1</translation>
    </message>
    <message>
        <source>Stop recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>End the recording and write the movie</source>
        <translation>Die Aufnahme beenden und den Film schreiben</translation>
    </message>
    <message>
        <source>Unfinished recordings…</source>
        <translation>Unfertige Aufnahmen …</translation>
    </message>
    <message>
        <source>How loud the input is, and how loud it was at most in the last moments; 0 dB is too loud</source>
        <translation>Wie laut der Eingang ist und wie laut er eben höchstens war; 0 dB ist zu laut</translation>
    </message>
    <message>
        <source>Level of the audio input</source>
        <translation>Pegel des Audioeingangs</translation>
    </message>
    <message>
        <source>Level of the input, in percent</source>
        <translation>Pegel des Eingangs, in Prozent</translation>
    </message>
    <message>
        <source>Record the sound of the default output too, whichever that is at the time</source>
        <translation>Auch den Ton der Standardausgabe aufnehmen, welche das auch gerade ist</translation>
    </message>
    <message>
        <source>and what the system plays</source>
        <translation>und was das System abspielt</translation>
    </message>
    <message>
        <source>Level of what the system plays, in percent</source>
        <translation>Pegel der Systemwiedergabe, in Prozent</translation>
    </message>
    <message>
        <source>Pause key</source>
        <translation>Pausentaste</translation>
    </message>
    <message>
        <source>Press the keys that are to pause a recording and go on with it from any program; Backspace for none</source>
        <translation>Tasten drücken, die in jedem Programm eine Aufnahme anhalten und fortsetzen sollen; Rücktaste für keine</translation>
    </message>
    <message>
        <source>Key that pauses a recording and goes on with it</source>
        <translation>Taste, die eine Aufnahme anhält und fortsetzt</translation>
    </message>
    <message>
        <source>Nothing is heard from %1.</source>
        <translation>Von %1 ist nichts zu hören.</translation>
    </message>
    <message>
        <source>How loud the input is in the movie: %1 %</source>
        <translation>Wie laut der Eingang im Film ist: %1 %</translation>
    </message>
    <message>
        <source>How loud is in the movie what the system plays: %1 %</source>
        <translation>Wie laut im Film ist, was das System abspielt: %1 %</translation>
    </message>
    <message>
        <source>Recorded monitor: %1</source>
        <translation>Aufgenommener Bildschirm: %1</translation>
    </message>
    <message>
        <source>At this scale of the screen the frame may be a pixel off what is recorded.</source>
        <translation>Bei dieser Skalierung des Bildschirms kann der Rahmen um ein Pixel von dem abweichen, was aufgenommen wird.</translation>
    </message>
    <message>
        <source>Sto&amp;p   %1, paused</source>
        <translation>Sto&amp;pp   %1, angehalten</translation>
    </message>
    <message>
        <source>End the recording by itself, when the movie is so long; pauses do not count</source>
        <translation>Die Aufnahme von selbst beenden, wenn der Film so lang ist; Pausen zählen nicht</translation>
    </message>
    <message>
        <source>Stop after</source>
        <translation>Aufhören nach</translation>
    </message>
    <message>
        <source>How long the movie is to be: hours, minutes and seconds</source>
        <translation>Wie lang der Film werden soll: Stunden, Minuten und Sekunden</translation>
    </message>
    <message>
        <source>Length of the movie in hours, minutes and seconds</source>
        <translation>Länge des Films in Stunden, Minuten und Sekunden</translation>
    </message>
</context>
<context>
    <name>vornic::OptionsViewModel</name>
    <message>
        <source>Other</source>
        <translation>Andere</translation>
    </message>
    <message>
        <source>Whole display</source>
        <translation>Ganzer Bildschirm</translation>
    </message>
</context>
<context>
    <name>vornic::RecordingSession</name>
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
    <name>vornic::RecordingStart</name>
    <message>
        <source>Untitled</source>
        <translation>Unbenannt</translation>
    </message>
    <message>
        <source>The file %1 exists already.</source>
        <translation>Die Datei %1 gibt es schon.</translation>
    </message>
</context>
<context>
    <name>vornic::Recovery</name>
    <message>
        <source>Delete the recording?</source>
        <translation>Die Aufnahme löschen?</translation>
    </message>
    <message>
        <source>Once deleted, it cannot be brought back.</source>
        <translation>Gelöscht ist sie nicht wiederzubekommen.</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
</context>
<context>
    <name>vornic::SelectionPainting</name>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
</context>
<context>
    <name>vornic::SelectionWindow</name>
    <message>
        <source>Drag a rectangle, or click a window. Enter takes it, Esc keeps the old one.
Arrow keys move, Shift+arrow keys resize, with Ctrl by ten pixels. Tab chooses a window, Home the whole display.</source>
        <translation>Ziehen Sie ein Rechteck auf oder klicken Sie auf ein Fenster. Eingabe übernimmt, Esc behält das alte.
Pfeiltasten verschieben, Umschalt+Pfeiltasten ändern die Größe, mit Strg um zehn Pixel. Tab wählt ein Fenster, Pos1 den ganzen Bildschirm.</translation>
    </message>
    <message>
        <source>Select on screen</source>
        <translation>Auf dem Bildschirm wählen</translation>
    </message>
    <message>
        <source>%1 × %2 pixels, %3 from the left and %4 from the bottom</source>
        <translation>%1 × %2 Pixel, %3 von links und %4 von unten</translation>
    </message>
</context>
<context>
    <name>vornic::ShortcutField</name>
    <message>
        <source>None</source>
        <translation>Keins</translation>
    </message>
</context>
<context>
    <name>vornic::SizeLabel</name>
    <message>
        <source>Size of the rectangle</source>
        <translation>Größe des Rechtecks</translation>
    </message>
</context>
<context>
    <name>vornic::StatusLine</name>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Zeigen</translation>
    </message>
    <message>
        <source>Play the movie that was recorded last</source>
        <translation>Den zuletzt aufgenommenen Film abspielen</translation>
    </message>
    <message>
        <source>Show the movie that was recorded last in its folder</source>
        <translation>Den zuletzt aufgenommenen Film in seinem Ordner zeigen</translation>
    </message>
    <message>
        <source>Saved %1, %2, %3</source>
        <translation>%1 gespeichert, %2, %3</translation>
    </message>
</context>
<context>
    <name>vornic::StopBar</name>
    <message>
        <source>Stop recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>Stop the recording</source>
        <translation>Aufnahme beenden</translation>
    </message>
    <message>
        <source>No sound has come. Click to go on without sound.</source>
        <translation>Es kam kein Ton. Ein Klick nimmt ohne Ton weiter auf.</translation>
    </message>
    <message>
        <source>Go on without sound</source>
        <translation>Ohne Ton weiter</translation>
    </message>
    <message>
        <source>Go on with the recording</source>
        <translation>Die Aufnahme fortsetzen</translation>
    </message>
    <message>
        <source>Pause the recording</source>
        <translation>Die Aufnahme anhalten</translation>
    </message>
    <message>
        <source>Resume</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Level of the sound that is recorded</source>
        <translation>Pegel des aufgenommenen Tons</translation>
    </message>
    <message>
        <source>Stop the recording, %1</source>
        <translation>Die Aufnahme beenden, %1</translation>
    </message>
</context>
<context>
    <name>vornic::StopItem</name>
    <message>
        <source>Stop the recording</source>
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
    <message>
        <source>Go on without sound</source>
        <translation>Ohne Ton weiter</translation>
    </message>
    <message>
        <source>%1, no sound</source>
        <translation>%1, kein Ton</translation>
    </message>
    <message>
        <source>%1, paused</source>
        <translation>%1, angehalten</translation>
    </message>
    <message>
        <source>Go on with the recording</source>
        <translation>Die Aufnahme fortsetzen</translation>
    </message>
    <message>
        <source>Pause the recording</source>
        <translation>Die Aufnahme anhalten</translation>
    </message>
</context>
<context>
    <name>vornic::UnfinishedLine</name>
    <message>
        <source>Make the movie</source>
        <translation>Film machen</translation>
    </message>
    <message>
        <source>Asks where the movie is kept, and writes it</source>
        <translation>Fragt, wohin der Film soll, und schreibt ihn</translation>
    </message>
    <message>
        <source>Show them…</source>
        <translation>Zeigen …</translation>
    </message>
    <message>
        <source>List them, to make their movies or to delete them</source>
        <translation>Listet sie auf, um Filme daraus zu machen oder sie zu löschen</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Leave it for later: the menu Vornic leads back to it</source>
        <translation>Für später liegen lassen: das Menü Vornic führt wieder dorthin</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete the recording, after a question</source>
        <translation>Löscht die Aufnahme nach einer Frage</translation>
    </message>
    <message>
        <source>A picture from the middle of the recording</source>
        <translation>Ein Bild aus der Mitte der Aufnahme</translation>
    </message>
</context>
<context>
    <name>vornic::UnfinishedSheet</name>
    <message>
        <source>Unfinished recordings</source>
        <translation>Unfertige Aufnahmen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete the chosen recording, after a question</source>
        <translation>Löscht die gewählte Aufnahme nach einer Frage</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Close the list and leave them all as they are; the menu Vornic leads back here</source>
        <translation>Schließt die Liste und lässt alle, wie sie sind; das Menü Vornic führt wieder hierher</translation>
    </message>
    <message>
        <source>Make the movie</source>
        <translation>Film machen</translation>
    </message>
    <message>
        <source>Asks where the movie of the chosen recording is kept, and writes it</source>
        <translation>Fragt, wohin der Film der gewählten Aufnahme soll, und schreibt ihn</translation>
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
    <message>
        <source>%1 is free in %2: a recording would stop at once.</source>
        <translation>In %2 sind %1 frei: Eine Aufnahme würde sofort enden.</translation>
    </message>
    <message>
        <source>%1 is free in %2. This lasts for %3 min when everything on the screen moves, and for much longer when little does.</source>
        <translation>In %2 sind %1 frei. Das reicht für %3 min, wenn sich alles auf dem Bildschirm bewegt, und viel länger, wenn sich wenig bewegt.</translation>
    </message>
</context>
<context>
    <name>vornic::VNDragDropImageView</name>
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
    <message>
        <source>Minimise</source>
        <translation>Minimieren</translation>
    </message>
    <message>
        <source>Both windows; the title of the main window tells how much is written</source>
        <translation>Beide Fenster; der Titel des Hauptfensters sagt, wie viel geschrieben ist</translation>
    </message>
    <message>
        <source>%1 % – %2</source>
        <translation>%1 % – %2</translation>
    </message>
    <message>
        <source>Later</source>
        <translation>Später</translation>
    </message>
    <message>
        <source>Keeps the recording: the main window leads back to it, also after the next start</source>
        <translation>Behält die Aufnahme: das Hauptfenster führt wieder zu ihr, auch nach dem nächsten Start</translation>
    </message>
</context>
<context>
    <name>vornic::VNHintWndCtroller</name>
    <message>
        <source>Recording starts now</source>
        <translation>Die Aufnahme beginnt jetzt</translation>
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
    <message>
        <source>The window is minimised while the recording runs. To stop it, click the red icon in the panel of the desktop.</source>
        <translation>Das Fenster ist solange minimiert. Ein Klick auf das rote Symbol in der Leiste der Arbeitsumgebung beendet die Aufnahme.</translation>
    </message>
    <message>
        <source>The window is minimised while the recording runs. To stop it, click the bar with the clock at the edge of the screen.</source>
        <translation>Das Fenster ist solange minimiert. Ein Klick auf die Leiste mit der Uhr am Rand des Bildschirms beendet die Aufnahme.</translation>
    </message>
    <message>
        <source>The window is minimised while the recording runs. To stop it, click the red icon in the panel of the desktop, or press %1.</source>
        <translation>Das Fenster ist solange minimiert. Ein Klick auf das rote Symbol in der Leiste der Arbeitsumgebung oder %1 beendet die Aufnahme.</translation>
    </message>
    <message>
        <source>The window is minimised while the recording runs. To stop it, click the bar with the clock at the edge of the screen, or press %1.</source>
        <translation>Das Fenster ist solange minimiert. Ein Klick auf die Leiste mit der Uhr am Rand des Bildschirms oder %1 beendet die Aufnahme.</translation>
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
    <message>
        <source>The folder %1 could not be shown: there is no file browser.</source>
        <translation>Der Ordner %1 konnte nicht gezeigt werden: Es gibt keinen Dateimanager.</translation>
    </message>
    <message>
        <source>%1 could not be opened: there is no program for it.</source>
        <translation>%1 konnte nicht geöffnet werden: Es gibt kein Programm dafür.</translation>
    </message>
</context>
<context>
    <name>vornic::WindowLogoPanels</name>
    <message>
        <source>Choose the logo&apos;s picture</source>
        <translation>Bild für das Logo wählen</translation>
    </message>
    <message>
        <source>The logo&apos;s font</source>
        <translation>Schrift des Logos</translation>
    </message>
</context>
<context>
    <name>vornic::WindowProgram</name>
    <message>
        <source>Another program has this key.</source>
        <translation>Ein anderes Programm hat dieses Kürzel.</translation>
    </message>
    <message>
        <source>The keyboard does not have this key.</source>
        <translation>Diese Taste hat die Tastatur nicht.</translation>
    </message>
    <message>
        <source>The display is gone.</source>
        <translation>Die Anzeige ist weg.</translation>
    </message>
    <message>
        <source>The display is gone</source>
        <translation>Die Anzeige ist weg</translation>
    </message>
    <message>
        <source>The recording is kept, and its movie is being made.</source>
        <translation>Die Aufnahme ist aufgehoben, und ihr Film wird erstellt.</translation>
    </message>
    <message>
        <source>The recording is kept, and its movie can be made at the next start.</source>
        <translation>Die Aufnahme ist aufgehoben, und ihr Film lässt sich beim nächsten Start erstellen.</translation>
    </message>
    <message>
        <source>%1. %2 (%3)</source>
        <translation>%1. %2 (%3)</translation>
    </message>
    <message>
        <source>Another program has the key that pauses.</source>
        <translation>Ein anderes Programm hat die Taste, die anhält.</translation>
    </message>
    <message>
        <source>The keyboard does not have the key that pauses.</source>
        <translation>Die Tastatur hat die Taste nicht, die anhält.</translation>
    </message>
    <message>
        <source>Bind a desktop key to “vornic --pause”.</source>
        <translation>Legen Sie eine Taste des Desktops auf „vornic --pause“.</translation>
    </message>
    <message>
        <source>Both keys are the same: it does not pause.</source>
        <translation>Beide Tasten sind gleich: Sie hält nicht an.</translation>
    </message>
    <message>
        <source>The desktop has this key for it: %1</source>
        <translation>Der Desktop hat dafür diese Taste: %1</translation>
    </message>
    <message>
        <source>Bind a desktop key to “vornic --toggle”.</source>
        <translation>Legen Sie „vornic --toggle“ auf eine Taste des Desktops.</translation>
    </message>
    <message>
        <source>The desktop was not allowed to give the key.</source>
        <translation>Der Desktop durfte die Taste nicht vergeben.</translation>
    </message>
    <message>
        <source>Choose its key in the desktop&apos;s settings.</source>
        <translation>Wählen Sie die Taste in den Einstellungen des Desktops.</translation>
    </message>
    <message>
        <source>The desktop does not show its screen for that; drag the frame, or type the numbers.</source>
        <translation>Dafür zeigt der Desktop seinen Bildschirm nicht; ziehen Sie den Rahmen oder geben Sie die Zahlen ein.</translation>
    </message>
</context>
<context>
    <name>vornic::WindowMovieProgress</name>
    <message>
        <source>Vornic is writing the movie: %1 %</source>
        <translation>Vornic schreibt den Film: %1 %</translation>
    </message>
    <message>
        <source>The movie has another name</source>
        <translation>Der Film hat einen anderen Namen</translation>
    </message>
    <message>
        <source>Another file has come to stand in %1 and is kept; the movie is %2.</source>
        <translation>Unter %1 steht inzwischen eine andere Datei, die erhalten bleibt; der Film ist %2.</translation>
    </message>
</context>
<context>
    <name>vornic::WindowProgress</name>
    <message>
        <source>no sound</source>
        <translation>kein Ton</translation>
    </message>
    <message>
        <source>No sound has come yet</source>
        <translation>Noch kam kein Ton</translation>
    </message>
    <message>
        <source>The recording waits for it and keeps no picture meanwhile.</source>
        <translation>Die Aufnahme wartet darauf und behält so lange kein Bild.</translation>
    </message>
    <message>
        <source>Go on without sound</source>
        <translation>Ohne Ton weiter</translation>
    </message>
    <message>
        <source>In memory: %1</source>
        <translation>Im Arbeitsspeicher: %1</translation>
    </message>
    <message>
        <source>On disk: %1</source>
        <translation>Auf dem Datenträger: %1</translation>
    </message>
    <message>
        <source>Little room is left for the recording</source>
        <translation>Für die Aufnahme ist nur noch wenig Platz</translation>
    </message>
    <message>
        <source>The audio input is gone</source>
        <translation>Der Toneingang ist nicht mehr da</translation>
    </message>
    <message>
        <source>The audio input is back</source>
        <translation>Der Toneingang ist wieder da</translation>
    </message>
    <message>
        <source>The recording goes on without sound, and with it once the input is back.</source>
        <translation>Die Aufnahme geht ohne Ton weiter, und mit Ton, sobald der Eingang wieder da ist.</translation>
    </message>
    <message>
        <source>Its sound is recorded again.</source>
        <translation>Sein Ton wird wieder aufgenommen.</translation>
    </message>
    <message>
        <source>Nothing is heard from %1.</source>
        <translation>Von %1 ist nichts zu hören.</translation>
    </message>
    <message>
        <source>It may be muted, or switched off. The recording goes on.</source>
        <translation>Vielleicht ist das Gerät stumm oder ausgeschaltet. Die Aufnahme läuft weiter.</translation>
    </message>
    <message>
        <source>“%1” is gone</source>
        <translation>„%1“ ist weg</translation>
    </message>
    <message>
        <source>“%1” is back</source>
        <translation>„%1“ ist wieder da</translation>
    </message>
    <message>
        <source>The recording goes on with the other sound, and with both once it is back.</source>
        <translation>Die Aufnahme geht mit dem anderen Ton weiter, und mit beiden, sobald er wieder da ist.</translation>
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
        <source>Save elsewhere</source>
        <translation>Woanders speichern</translation>
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
    <message>
        <source>Record without sound?</source>
        <translation>Ohne Ton aufnehmen?</translation>
    </message>
    <message>
        <source>Sound is on, but there is no audio input.</source>
        <translation>Der Ton ist eingeschaltet, aber es gibt keinen Toneingang.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Record without sound</source>
        <translation>Ohne Ton aufnehmen</translation>
    </message>
    <message>
        <source>The recording is kept</source>
        <translation>Die Aufnahme bleibt erhalten</translation>
    </message>
    <message>
        <source>The main window leads back to it and makes the movie later, also after the next start.</source>
        <translation>Das Hauptfenster führt wieder zu ihr und macht den Film später, auch nach dem nächsten Start.</translation>
    </message>
</context>
</TS>

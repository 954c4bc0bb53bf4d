<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>Easing</name>
    <message>
        <source>Usual</source>
        <translation>Üblich</translation>
    </message>
    <message>
        <source>Gently away, gently there</source>
        <translation>Sanft los, sanft an</translation>
    </message>
    <message>
        <source>Gently away</source>
        <translation>Sanft los</translation>
    </message>
    <message>
        <source>Gently there</source>
        <translation>Sanft an</translation>
    </message>
    <message>
        <source>Evenly</source>
        <translation>Gleichmäßig</translation>
    </message>
    <message>
        <source>At one speed through all</source>
        <translation>Mit einem Tempo durch alle</translation>
    </message>
    <message>
        <source>Jump</source>
        <translation>Sprung</translation>
    </message>
</context>
<context>
    <name>KeyPanel</name>
    <message>
        <source>Evenly</source>
        <translation>Gleichmäßig</translation>
    </message>
    <message>
        <source>Gently</source>
        <translation>Sanft</translation>
    </message>
    <message>
        <source>At one speed through all</source>
        <translation>Mit einem Tempo durch alle</translation>
    </message>
    <message>
        <source>Jump</source>
        <translation>Sprung</translation>
    </message>
</context>
<context>
    <name>Moves</name>
    <message>
        <source>Zoom in</source>
        <translation>Hineinzoomen</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Herauszoomen</translation>
    </message>
    <message>
        <source>Pan left</source>
        <translation>Schwenk nach links</translation>
    </message>
    <message>
        <source>Pan right</source>
        <translation>Schwenk nach rechts</translation>
    </message>
    <message>
        <source>Pan up</source>
        <translation>Schwenk nach oben</translation>
    </message>
    <message>
        <source>Pan down</source>
        <translation>Schwenk nach unten</translation>
    </message>
    <message>
        <source>Pan up and left</source>
        <translation>Schwenk nach links oben</translation>
    </message>
    <message>
        <source>Pan up and right</source>
        <translation>Schwenk nach rechts oben</translation>
    </message>
    <message>
        <source>Pan down and left</source>
        <translation>Schwenk nach links unten</translation>
    </message>
    <message>
        <source>Pan down and right</source>
        <translation>Schwenk nach rechts unten</translation>
    </message>
    <message>
        <source>Stand still</source>
        <translation>Stillstehen</translation>
    </message>
</context>
<context>
    <name>Scenes</name>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Lage</translation>
    </message>
    <message>
        <source>Arrival</source>
        <translation>Ankunft</translation>
    </message>
    <message>
        <source>Departure</source>
        <translation>Abgang</translation>
    </message>
</context>
<context>
    <name>Shortcuts</name>
    <message>
        <source>Drag inside a view</source>
        <translation>Im Ausschnitt ziehen</translation>
    </message>
    <message>
        <source>Move it; Shift locks an axis, Ctrl suspends snapping</source>
        <translation>Bewegt ihn; Umschalt hält eine Achse fest, Strg setzt das Einrasten aus</translation>
    </message>
    <message>
        <source>Drag a corner</source>
        <translation>An einer Ecke ziehen</translation>
    </message>
    <message>
        <source>Resize about the opposite corner; Alt: about the middle</source>
        <translation>Ändert die Größe um die andere Ecke; Alt: um die Mitte</translation>
    </message>
    <message>
        <source>Wheel over a view</source>
        <translation>Mausrad über einem Ausschnitt</translation>
    </message>
    <message>
        <source>Zoom the view</source>
        <translation>Zoomt den Ausschnitt</translation>
    </message>
    <message>
        <source>Ctrl+Wheel</source>
        <translation>Strg+Mausrad</translation>
    </message>
    <message>
        <source>Zoom the canvas to the pointer</source>
        <translation>Zoomt die Fläche zum Zeiger</translation>
    </message>
    <message>
        <source>Space+Drag, middle button</source>
        <translation>Leertaste+Ziehen, mittlere Taste</translation>
    </message>
    <message>
        <source>Pan the canvas</source>
        <translation>Verschiebt die Fläche</translation>
    </message>
    <message>
        <source>Double click</source>
        <translation>Doppelklick</translation>
    </message>
    <message>
        <source>Add a stop there</source>
        <translation>Fügt dort einen Halt ein</translation>
    </message>
    <message>
        <source>Arrow keys</source>
        <translation>Pfeiltasten</translation>
    </message>
    <message>
        <source>Move the view by a pixel of the photo; Shift: by ten</source>
        <translation>Bewegen den Ausschnitt um ein Pixel des Fotos; Umschalt: um zehn</translation>
    </message>
    <message>
        <source>+, −</source>
        <translation>+, −</translation>
    </message>
    <message>
        <source>Tab, Shift+Tab</source>
        <translation>Tab, Umschalt+Tab</translation>
    </message>
    <message>
        <source>Next and previous view</source>
        <translation>Nächster und voriger Ausschnitt</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Entf</translation>
    </message>
    <message>
        <source>Remove the view</source>
        <translation>Entfernt den Ausschnitt</translation>
    </message>
    <message>
        <source>Escape</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>End a drag as it began</source>
        <translation>Bricht das Ziehen ab</translation>
    </message>
    <message>
        <source>0, 1</source>
        <translation>0, 1</translation>
    </message>
    <message>
        <source>Fit the photo; show its pixels as they are</source>
        <translation>Foto einpassen; seine Pixel zeigen, wie sie sind</translation>
    </message>
    <message>
        <source>On the photo</source>
        <translation>Auf dem Foto</translation>
    </message>
    <message>
        <source>Keyboard and Mouse</source>
        <translation>Tastatur und Maus</translation>
    </message>
    <message>
        <source>Drag between others, Alt+Left, Alt+Right</source>
        <translation>Zwischen andere ziehen, Alt+Links, Alt+Rechts</translation>
    </message>
    <message>
        <source>Move the picture</source>
        <translation>Bild verschieben</translation>
    </message>
    <message>
        <source>Left, Right</source>
        <translation>Links, Rechts</translation>
    </message>
    <message>
        <source>Previous and next picture</source>
        <translation>Voriges und nächstes Bild</translation>
    </message>
    <message>
        <source>Insert, Delete</source>
        <translation>Einfg, Entf</translation>
    </message>
    <message>
        <source>Add pictures; remove the picture</source>
        <translation>Bilder hinzufügen; Bild entfernen</translation>
    </message>
    <message>
        <source>On the pictures of a slideshow</source>
        <translation>Auf den Bildern einer Diaschau</translation>
    </message>
    <message>
        <source>A frame back or on; Shift: a second</source>
        <translation>Ein Bild zurück oder vor; Umschalt: eine Sekunde</translation>
    </message>
    <message>
        <source>Look at the view longer or shorter; Ctrl: its way</source>
        <translation>Die Ansicht länger oder kürzer betrachten; Strg: ihren Weg</translation>
    </message>
    <message>
        <source>Ctrl+Left, Ctrl+Right</source>
        <translation>Strg+Links, Strg+Rechts</translation>
    </message>
    <message>
        <source>Previous and next key</source>
        <translation>Voriger und nächster Schlüssel</translation>
    </message>
    <message>
        <source>Remove the selected keys</source>
        <translation>Die gewählten Schlüssel entfernen</translation>
    </message>
    <message>
        <source>On the timeline</source>
        <translation>Auf der Zeitleiste</translation>
    </message>
</context>
<context>
    <name>Sizes</name>
    <message>
        <source>Looking at the photographs…</source>
        <translation>Die Fotos werden angesehen …</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>Timeline</name>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>Perceived speed</source>
        <translation>Empfundenes Tempo</translation>
    </message>
</context>
<context>
    <name>kelto::editor::Canvas</name>
    <message>
        <source>Photo with views</source>
        <translation>Foto mit Ausschnitten</translation>
    </message>
    <message>
        <source>View %1 of %2, %3 pixels wide</source>
        <translation>Ausschnitt %1 von %2, %3 Pixel breit</translation>
    </message>
</context>
<context>
    <name>kelto::editor::DrawingProcess</name>
    <message>
        <source>%1: cannot be started: %2</source>
        <translation>%1: lässt sich nicht starten: %2</translation>
    </message>
    <message>
        <source>the preview stopped unexpectedly; the next change starts it again</source>
        <translation>die Vorschau brach ab; die nächste Änderung startet sie neu</translation>
    </message>
    <message>
        <source>the preview ended with code %1; the next change starts it again</source>
        <translation>die Vorschau endete mit Code %1; die nächste Änderung startet sie neu</translation>
    </message>
</context>
<context>
    <name>kelto::editor::FilmPanel</name>
    <message>
        <source>Film</source>
        <translation>Film</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Frames a second</source>
        <translation>Bilder je Sekunde</translation>
    </message>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>Length</source>
        <translation>Länge</translation>
    </message>
    <message>
        <source>Motion</source>
        <translation>Bewegung</translation>
    </message>
    <message>
        <source>Steady</source>
        <translation>Stetig</translation>
    </message>
    <message>
        <source>Fly</source>
        <translation>Flug</translation>
    </message>
    <message>
        <source>Linear</source>
        <translation>Linear</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Weg</translation>
    </message>
    <message>
        <source>Straight</source>
        <translation>Gerade</translation>
    </message>
    <message>
        <source>Smooth</source>
        <translation>Weich</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Fields</source>
        <translation>Halbbilder</translation>
    </message>
    <message>
        <source>Whole frames</source>
        <translation>Vollbilder</translation>
    </message>
    <message>
        <source>Top field first</source>
        <translation>Oberes zuerst</translation>
    </message>
    <message>
        <source>Bottom field first</source>
        <translation>Unteres zuerst</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>Wählen …</translation>
    </message>
    <message>
        <source>Colour beside the photo</source>
        <translation>Farbe neben dem Foto</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Change Size</source>
        <translation>Größe ändern</translation>
    </message>
    <message>
        <source>Change Rate</source>
        <translation>Bildrate ändern</translation>
    </message>
    <message>
        <source>Change Length</source>
        <translation>Länge ändern</translation>
    </message>
    <message>
        <source>Change Motion</source>
        <translation>Bewegung ändern</translation>
    </message>
    <message>
        <source>Change Fields</source>
        <translation>Halbbilder ändern</translation>
    </message>
    <message>
        <source>Change Setting</source>
        <translation>Einstellung ändern</translation>
    </message>
    <message>
        <source>Change Background</source>
        <translation>Hintergrund ändern</translation>
    </message>
</context>
<context>
    <name>kelto::editor::KeyPanel</name>
    <message>
        <source>Time</source>
        <translation>Zeit</translation>
    </message>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Across</source>
        <translation>Waagrecht</translation>
    </message>
    <message>
        <source>From the photo’s middle, right, in widths of what zoom 1 shows</source>
        <translation>Von der Mitte des Fotos nach rechts, in Breiten dessen, was Zoom 1 zeigt</translation>
    </message>
    <message>
        <source>Down</source>
        <translation>Senkrecht</translation>
    </message>
    <message>
        <source>From the photo’s middle, down, in heights of what zoom 1 shows</source>
        <translation>Von der Mitte des Fotos nach unten, in Höhen dessen, was Zoom 1 zeigt</translation>
    </message>
    <message>
        <source>How</source>
        <translation>Wie</translation>
    </message>
    <message>
        <source>A film of keys</source>
        <translation>Ein Film aus Schlüsseln</translation>
    </message>
    <message>
        <source>%1 keys are selected</source>
        <translation>%1 Schlüssel sind gewählt</translation>
    </message>
    <message>
        <source>Select a key on the timeline to type its time and value</source>
        <translation>Wählen Sie auf der Zeitleiste einen Schlüssel, um Zeit und Wert einzutippen</translation>
    </message>
    <message>
        <source>%1, key %2 of %3</source>
        <translation>%1, Schlüssel %2 von %3</translation>
    </message>
</context>
<context>
    <name>kelto::editor::MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>Open &amp;Recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Speichern</translation>
    </message>
    <message>
        <source>Save &amp;As…</source>
        <translation>Speichern &amp;unter …</translation>
    </message>
    <message>
        <source>Re&amp;load</source>
        <translation>Neu &amp;laden</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Change &amp;Photo…</source>
        <translation>&amp;Foto wechseln …</translation>
    </message>
    <message>
        <source>Photo</source>
        <translation>Foto</translation>
    </message>
    <message>
        <source>Sou&amp;nd…</source>
        <translation>&amp;Ton …</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Ton</translation>
    </message>
    <message>
        <source>&amp;Video Behind…</source>
        <translation>&amp;Video dahinter …</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>Video</translation>
    </message>
    <message>
        <source>&amp;Make Film…</source>
        <translation>Film &amp;machen …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Redo</source>
        <translation>&amp;Wiederholen</translation>
    </message>
    <message>
        <source>&amp;Copy View</source>
        <translation>Ausschnitt &amp;kopieren</translation>
    </message>
    <message>
        <source>&amp;Paste View</source>
        <translation>Ausschnitt &amp;einfügen</translation>
    </message>
    <message>
        <source>Copy as Co&amp;mmand</source>
        <translation>Als Be&amp;fehl kopieren</translation>
    </message>
    <message>
        <source>&amp;Views</source>
        <translation>&amp;Ausschnitte</translation>
    </message>
    <message>
        <source>&amp;Moves</source>
        <translation>Be&amp;wegungen</translation>
    </message>
    <message>
        <source>&amp;Show</source>
        <translation>A&amp;nsicht</translation>
    </message>
    <message>
        <source>&amp;Play or Pause</source>
        <translation>&amp;Abspielen oder anhalten</translation>
    </message>
    <message>
        <source>&amp;Fit Photo</source>
        <translation>Foto &amp;einpassen</translation>
    </message>
    <message>
        <source>Photo’s &amp;Pixels</source>
        <translation>&amp;Pixel des Fotos</translation>
    </message>
    <message>
        <source>Zoom &amp;In</source>
        <translation>&amp;Vergrößern</translation>
    </message>
    <message>
        <source>Zoom &amp;Out</source>
        <translation>Ver&amp;kleinern</translation>
    </message>
    <message>
        <source>&amp;Action-Safe Frame</source>
        <translation>&amp;Sicherer Bildbereich</translation>
    </message>
    <message>
        <source>F&amp;ull Screen Preview</source>
        <translation>Vorschau im V&amp;ollbild</translation>
    </message>
    <message>
        <source>Fi&amp;lms Being Made</source>
        <translation>&amp;Filme in Arbeit</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Keyboard and Mouse</source>
        <translation>&amp;Tastatur und Maus</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>&amp;Über</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Über</translation>
    </message>
    <message>
        <source>Kelto Pan &amp; Zoom %1

Turns photographs into films with a moving view.</source>
        <translation>Kelto Pan &amp; Zoom %1

Macht aus Fotos Filme mit bewegtem Ausschnitt.</translation>
    </message>
    <message>
        <source>Toolbar</source>
        <translation>Werkzeugleiste</translation>
    </message>
    <message>
        <source>Moves</source>
        <translation>Bewegungen</translation>
    </message>
    <message>
        <source>Choose Move</source>
        <translation>Bewegung wählen</translation>
    </message>
    <message>
        <source>Find by &amp;Itself</source>
        <translation>&amp;Selbst finden</translation>
    </message>
    <message>
        <source>&amp;Add Stop</source>
        <translation>Halt &amp;hinzufügen</translation>
    </message>
    <message>
        <source>&amp;Remove Stop</source>
        <translation>Halt &amp;entfernen</translation>
    </message>
    <message>
        <source>&amp;Swap Start and End</source>
        <translation>Anfang und Ende &amp;tauschen</translation>
    </message>
    <message>
        <source>Swap Start and End</source>
        <translation>Anfang und Ende tauschen</translation>
    </message>
    <message>
        <source>Re&amp;verse</source>
        <translation>&amp;Umkehren</translation>
    </message>
    <message>
        <source>Reverse</source>
        <translation>Umkehren</translation>
    </message>
    <message>
        <source>&amp;Fit to Whole Photo</source>
        <translation>An ganzes &amp;Foto anpassen</translation>
    </message>
    <message>
        <source>&amp;Beyond the Edges</source>
        <translation>Über den &amp;Rand hinaus</translation>
    </message>
    <message>
        <source>Views may show what lies beside the photo</source>
        <translation>Ausschnitte dürfen zeigen, was neben dem Foto liegt</translation>
    </message>
    <message>
        <source>Make &amp;Keys Views</source>
        <translation>&amp;Schlüssel in Ausschnitte wandeln</translation>
    </message>
    <message>
        <source>Make Keys Views</source>
        <translation>Schlüssel in Ausschnitte wandeln</translation>
    </message>
    <message>
        <source>&amp;Undo: %1</source>
        <translation>&amp;Rückgängig: %1</translation>
    </message>
    <message>
        <source>&amp;Redo: %1</source>
        <translation>&amp;Wiederholen: %1</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Find Move</source>
        <translation>Bewegung finden</translation>
    </message>
    <message>
        <source>The clipboard holds no view: %1</source>
        <translation>In der Zwischenablage ist kein Ausschnitt: %1</translation>
    </message>
    <message>
        <source>Change Easing</source>
        <translation>Tempo ändern</translation>
    </message>
    <message>
        <source>Films being made</source>
        <translation>Filme in Arbeit</translation>
    </message>
    <message>
        <source>Move View</source>
        <translation>Ausschnitt bewegen</translation>
    </message>
    <message>
        <source>Add Stop</source>
        <translation>Halt hinzufügen</translation>
    </message>
    <message>
        <source>Remove Stop</source>
        <translation>Halt entfernen</translation>
    </message>
    <message>
        <source>Change Times</source>
        <translation>Zeiten ändern</translation>
    </message>
    <message>
        <source>Move Keys</source>
        <translation>Schlüssel bewegen</translation>
    </message>
    <message>
        <source>Add Key</source>
        <translation>Schlüssel hinzufügen</translation>
    </message>
    <message>
        <source>Remove Keys</source>
        <translation>Schlüssel entfernen</translation>
    </message>
    <message>
        <source>Copy Keys</source>
        <translation>Schlüssel kopieren</translation>
    </message>
    <message>
        <source>Open a photograph, or drop one here</source>
        <translation>Ein Foto öffnen oder hier ablegen</translation>
    </message>
    <message>
        <source>Photographs and projects (*.json *.jpg *.jpeg *.png *.tif *.tiff *.webp *.gif *.bmp *.tga *.heic *.heif);;All files (*)</source>
        <translation>Fotos und Projekte (*.json *.jpg *.jpeg *.png *.tif *.tiff *.webp *.gif *.bmp *.tga *.heic *.heif);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Save Project</source>
        <translation>Projekt speichern</translation>
    </message>
    <message>
        <source>Projects (*.json)</source>
        <translation>Projekte (*.json)</translation>
    </message>
    <message>
        <source>Unsaved Changes</source>
        <translation>Ungespeicherte Änderungen</translation>
    </message>
    <message>
        <source>Save the changes to %1?</source>
        <translation>Änderungen an %1 speichern?</translation>
    </message>
    <message>
        <source>%1 was changed by another program and read again</source>
        <translation>%1 wurde von einem anderen Programm geändert und neu geladen</translation>
    </message>
    <message>
        <source>Changed on Disk</source>
        <translation>Datei geändert</translation>
    </message>
    <message>
        <source>%1 was changed by another program. Take its changes in place of yours? Undo brings yours back.</source>
        <translation>%1 wurde von einem anderen Programm geändert. Dessen Änderungen statt der eigenen übernehmen? „Rückgängig“ holt die eigenen zurück.</translation>
    </message>
    <message>
        <source>Unsaved Changes Found</source>
        <translation>Ungespeicherte Änderungen gefunden</translation>
    </message>
    <message>
        <source>The editor stopped before %1 was saved. Take up the unsaved changes?</source>
        <translation>Der Editor wurde beendet, bevor %1 gespeichert war. Die ungespeicherten Änderungen übernehmen?</translation>
    </message>
    <message>
        <source>None yet</source>
        <translation>Noch keine</translation>
    </message>
    <message>
        <source>Films Being Made</source>
        <translation>Filme in Arbeit</translation>
    </message>
    <message>
        <source>Films are still being made. Cancel them and quit?</source>
        <translation>Es sind noch Filme in Arbeit. Abbrechen und beenden?</translation>
    </message>
    <message>
        <source>Film</source>
        <translation>Film</translation>
    </message>
    <message>
        <source>Open &amp;Folder…</source>
        <translation>&amp;Ordner öffnen …</translation>
    </message>
    <message>
        <source>&amp;Pictures</source>
        <translation>&amp;Bilder</translation>
    </message>
    <message>
        <source>Open Photographs or a Project</source>
        <translation>Fotos oder Projekt öffnen</translation>
    </message>
    <message>
        <source>Open a Folder of Photographs</source>
        <translation>Ordner mit Fotos öffnen</translation>
    </message>
    <message>
        <source>&amp;Add Photographs…</source>
        <translation>Fotos &amp;hinzufügen …</translation>
    </message>
    <message>
        <source>&amp;Remove Picture</source>
        <translation>Bild &amp;entfernen</translation>
    </message>
    <message>
        <source>&amp;Previous Picture</source>
        <translation>&amp;Voriges Bild</translation>
    </message>
    <message>
        <source>&amp;Next Picture</source>
        <translation>&amp;Nächstes Bild</translation>
    </message>
    <message>
        <source>Move to the &amp;Left</source>
        <translation>Nach &amp;links rücken</translation>
    </message>
    <message>
        <source>Move to the R&amp;ight</source>
        <translation>Nach &amp;rechts rücken</translation>
    </message>
    <message>
        <source>Change Seconds</source>
        <translation>Dauer ändern</translation>
    </message>
    <message>
        <source>Change Fade</source>
        <translation>Blende ändern</translation>
    </message>
    <message>
        <source>Add Photographs</source>
        <translation>Fotos hinzufügen</translation>
    </message>
    <message>
        <source>Photographs (*.jpg *.jpeg *.png *.tif *.tiff *.webp *.gif *.bmp *.tga *.heic *.heif);;All files (*)</source>
        <translation>Fotos (*.jpg *.jpeg *.png *.tif *.tiff *.webp *.gif *.bmp *.tga *.heic *.heif);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Move Picture</source>
        <translation>Bild verschieben</translation>
    </message>
    <message>
        <source>Remove Picture</source>
        <translation>Bild entfernen</translation>
    </message>
    <message>
        <source>&amp;Colours</source>
        <translation>&amp;Farben</translation>
    </message>
    <message>
        <source>&amp;System</source>
        <translation>&amp;System</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>&amp;Dark</source>
        <translation>&amp;Dunkel</translation>
    </message>
    <message>
        <source>Change Key</source>
        <translation>Schlüssel ändern</translation>
    </message>
    <message>
        <source>Clear Fi&amp;nished Films</source>
        <translation>Fertige Filme entfer&amp;nen</translation>
    </message>
    <message>
        <source>&amp;Caption…</source>
        <translation>&amp;Bildtext …</translation>
    </message>
    <message>
        <source>&amp;Title of the Show…</source>
        <translation>&amp;Titel der Diaschau …</translation>
    </message>
    <message>
        <source>Title of the Show</source>
        <translation>Titel der Diaschau</translation>
    </message>
    <message>
        <source>Words on a card before the first picture:</source>
        <translation>Worte auf einer Tafel vor dem ersten Bild:</translation>
    </message>
    <message>
        <source>Change Title</source>
        <translation>Titel ändern</translation>
    </message>
    <message>
        <source>Caption</source>
        <translation>Bildtext</translation>
    </message>
    <message>
        <source>Words over the picture. {description} and {date} stand for what the photo says of itself:</source>
        <translation>Worte über dem Bild. {description} und {date} stehen für das, was das Foto von sich sagt:</translation>
    </message>
    <message>
        <source>Change Caption</source>
        <translation>Bildtext ändern</translation>
    </message>
</context>
<context>
    <name>kelto::editor::MoveFinder</name>
    <message>
        <source>%1 cannot be started: %2</source>
        <translation>%1 lässt sich nicht starten: %2</translation>
    </message>
</context>
<context>
    <name>kelto::editor::PictureArea</name>
    <message>
        <source>Film</source>
        <translation>Film</translation>
    </message>
</context>
<context>
    <name>kelto::editor::PreviewView</name>
    <message>
        <source>Place in the film</source>
        <translation>Stelle im Film</translation>
    </message>
    <message>
        <source>First frame</source>
        <translation>Erstes Bild</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Pos1</translation>
    </message>
    <message>
        <source>A frame back</source>
        <translation>Ein Bild zurück</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>A frame on</source>
        <translation>Ein Bild weiter</translation>
    </message>
    <message>
        <source>Last frame</source>
        <translation>Letztes Bild</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Schleife</translation>
    </message>
    <message>
        <source>Action-safe area</source>
        <translation>Sicherer Bildbereich</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>Vollbild</translation>
    </message>
    <message>
        <source>%1   frame %2 of %3</source>
        <translation>%1   Bild %2 von %3</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
</context>
<context>
    <name>kelto::editor::RenderDialog</name>
    <message>
        <source>Make a Film</source>
        <translation>Film machen</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Browse…</source>
        <translation>Durchsuchen …</translation>
    </message>
    <message>
        <source>As in the project, %1 × %2</source>
        <translation>Wie im Projekt, %1 × %2</translation>
    </message>
    <message>
        <source>Half, %1 × %2</source>
        <translation>Halb, %1 × %2</translation>
    </message>
    <message>
        <source>A quarter, %1 × %2</source>
        <translation>Ein Viertel, %1 × %2</translation>
    </message>
    <message>
        <source>As in the project</source>
        <translation>Wie im Projekt</translation>
    </message>
    <message>
        <source>Best (Ultra Qual)</source>
        <translation>Beste (Ultra Qual)</translation>
    </message>
    <message>
        <source>Good (Hi Qual)</source>
        <translation>Gute (Hi Qual)</translation>
    </message>
    <message>
        <source>Draft (Triangle)</source>
        <translation>Entwurf (Triangle)</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Codec</source>
        <translation>Codec</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Quality</source>
        <translation>Qualität</translation>
    </message>
    <message>
        <source>Estimate</source>
        <translation>Schätzung</translation>
    </message>
    <message>
        <source>Make Film</source>
        <translation>Film machen</translation>
    </message>
    <message>
        <source>%1 already exists. Replace it?</source>
        <translation>%1 gibt es schon. Ersetzen?</translation>
    </message>
    <message>
        <source>Name of the film</source>
        <translation>Name des Films</translation>
    </message>
    <message>
        <source>Making a sample…</source>
        <translation>Eine Probe wird gemacht …</translation>
    </message>
    <message>
        <source>About %1, made in about %2 s</source>
        <translation>Etwa %1, fertig in etwa %2 s</translation>
    </message>
    <message>
        <source>High</source>
        <translation>Hoch</translation>
    </message>
    <message>
        <source>Best</source>
        <translation>Beste</translation>
    </message>
    <message>
        <source>Medium</source>
        <translation>Mittel</translation>
    </message>
    <message>
        <source>Low</source>
        <translation>Niedrig</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Colour depth</source>
        <translation>Farbtiefe</translation>
    </message>
    <message>
        <source>Depth of the photo</source>
        <translation>Tiefe des Fotos</translation>
    </message>
    <message>
        <source>%1 bits a channel</source>
        <translation>%1 Bit je Kanal</translation>
    </message>
    <message>
        <source>How many bits a channel the film has</source>
        <translation>Wie viele Bit je Kanal der Film hat</translation>
    </message>
</context>
<context>
    <name>kelto::editor::RenderJob</name>
    <message>
        <source>The command ended without saying why.</source>
        <translation>Der Befehl endete ohne Angabe eines Grundes.</translation>
    </message>
    <message>
        <source>%1 cannot be started: %2</source>
        <translation>%1 lässt sich nicht starten: %2</translation>
    </message>
</context>
<context>
    <name>kelto::editor::RenderQueue</name>
    <message>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <source>Starting</source>
        <translation>Beginnt</translation>
    </message>
    <message>
        <source>%1 left</source>
        <translation>Noch %1</translation>
    </message>
    <message>
        <source>Made in %1</source>
        <translation>Fertig in %1</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>Abgebrochen</translation>
    </message>
    <message>
        <source>Progress of %1</source>
        <translation>Fortschritt von %1</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Clear Finished</source>
        <translation>Fertige entfernen</translation>
    </message>
    <message>
        <source>Takes films that are made or were given up off the list</source>
        <translation>Nimmt Filme, die fertig oder aufgegeben sind, aus der Liste</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Noch einmal</translation>
    </message>
</context>
<context>
    <name>kelto::editor::Session</name>
    <message>
        <source>Recover</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Reload</source>
        <translation>Neu laden</translation>
    </message>
</context>
<context>
    <name>kelto::editor::Strip</name>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>, fade %1 s</source>
        <translation>, Blende %1 s</translation>
    </message>
    <message>
        <source>Seen for</source>
        <translation>Zu sehen</translation>
    </message>
    <message>
        <source>Fade to the next</source>
        <translation>Blende zum nächsten</translation>
    </message>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
</context>
<context>
    <name>kelto::editor::Timeline</name>
    <message>
        <source>Timeline</source>
        <translation>Zeitleiste</translation>
    </message>
    <message>
        <source>View %1, looked at for %2</source>
        <translation>Ausschnitt %1, zu sehen für %2</translation>
    </message>
    <message>
        <source>From view %1 to view %2 in %3</source>
        <translation>Von Ausschnitt %1 zu Ausschnitt %2 in %3</translation>
    </message>
</context>
<context>
    <name>kelto::editor::ViewPanel</name>
    <message>
        <source> px</source>
        <translation> px</translation>
    </message>
    <message>
        <source> s</source>
        <translation> s</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>Look</source>
        <translation>Ansehen</translation>
    </message>
    <message>
        <source>How long the view is looked at</source>
        <translation>Wie lange der Ausschnitt zu sehen ist</translation>
    </message>
    <message>
        <source>Way</source>
        <translation>Weg</translation>
    </message>
    <message>
        <source>How long the way to the next view takes</source>
        <translation>Wie lange der Weg zum nächsten Ausschnitt dauert</translation>
    </message>
    <message>
        <source>A film of keys</source>
        <translation>Ein Film aus Schlüsseln</translation>
    </message>
    <message>
        <source>No view selected</source>
        <translation>Kein Ausschnitt gewählt</translation>
    </message>
    <message>
        <source>Start</source>
        <translation>Anfang</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>Stop %1</source>
        <translation>Halt %1</translation>
    </message>
    <message>
        <source>Enlarges the photo’s pixels %1 times</source>
        <translation>Vergrößert die Pixel des Fotos %1-fach</translation>
    </message>
    <message>
        <source>Shows %1 pixels of the photo in each of the film’s</source>
        <translation>Zeigt %1 Pixel des Fotos in jedem des Films</translation>
    </message>
</context>
<context>
    <name>main</name>
    <message>
        <source>Choose what a film of a photograph shows, by eye.</source>
        <translation>Mit dem Auge wählen, was ein Film aus einem Foto zeigt.</translation>
    </message>
    <message>
        <source>Colours: light, dark or system</source>
        <translation>Farben: light (hell), dark (dunkel) oder system</translation>
    </message>
    <message>
        <source>Photographs, a folder of them, or a project to open</source>
        <translation>Fotos, ein Ordner mit Fotos oder ein Projekt</translation>
    </message>
</context>
</TS>

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>sealwright::StatusPill</name>
    <message>
        <source>your turn</source>
        <translation>Sie sind dran</translation>
    </message>
</context>
<context>
    <name>DropOverlay</name>
    <message>
        <source>Goes on waiting for the verdict.</source>
        <translation>Wartet weiter auf das Ergebnis.</translation>
    </message>
    <message>
        <source>It %1 when you press Submit Now.</source>
        <translation>Es %1, wenn Sie „Jetzt einreichen“ drücken.</translation>
    </message>
    <message>
        <source>It opens in a window of its own, since this one has an item.</source>
        <translation>Es öffnet sich in einem eigenen Fenster, denn dieses hat schon ein Objekt.</translation>
    </message>
    <message>
        <source>The first stays here, each of the others opens in a window of its own.</source>
        <translation>Das erste bleibt hier, jedes weitere öffnet sich in einem eigenen Fenster.</translation>
    </message>
    <message>
        <source>Each opens in a window of its own.</source>
        <translation>Jedes öffnet sich in einem eigenen Fenster.</translation>
    </message>
</context>
<context>
    <name>EndingNotices</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
<context>
    <name>sealwright::AboutWindow</name>
    <message>
        <source>About Sealwright</source>
        <translation>Über Sealwright</translation>
    </message>
    <message>
        <source>Credits</source>
        <translation>Mitwirkende</translation>
    </message>
</context>
<context>
    <name>sealwright::ApiKeyForm</name>
    <message>
        <source>&amp;Key from App Store Connect</source>
        <translation>S&amp;chlüssel von App Store Connect</translation>
    </message>
    <message>
        <source>AuthKey_….p8</source>
        <translation>AuthKey_….p8</translation>
    </message>
    <message>
        <source>Keys (*.p8);;All files (*)</source>
        <translation>Schlüssel (*.p8);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Key I&amp;D</source>
        <translation>Schlüssel-I&amp;D</translation>
    </message>
    <message>
        <source>As the file&apos;s name tells</source>
        <translation>Wie im Namen der Datei</translation>
    </message>
    <message>
        <source>&amp;Issuer ID</source>
        <translation>A&amp;ussteller-ID</translation>
    </message>
    <message>
        <source>None, for an individual key</source>
        <translation>Keine bei einem persönlichen Schlüssel</translation>
    </message>
    <message>
        <source>&amp;Apple ID</source>
        <translation>&amp;Apple-ID</translation>
    </message>
    <message>
        <source>Keep &amp;under the name</source>
        <translation>A&amp;blegen unter dem Namen</translation>
    </message>
    <message>
        <source>notary</source>
        <translation>notary</translation>
    </message>
    <message>
        <source>Add &amp;Key</source>
        <translation>Schlüssel &amp;hinzufügen</translation>
    </message>
    <message>
        <source>Enter the key&apos;s ID; the file&apos;s name does not tell it.</source>
        <translation>Geben Sie die ID des Schlüssels ein; der Name der Datei nennt sie nicht.</translation>
    </message>
    <message>
        <source>The issuer ID has the form of a UUID.</source>
        <translation>Die Aussteller-ID hat die Form einer UUID.</translation>
    </message>
</context>
<context>
    <name>sealwright::CommandBar</name>
    <message>
        <source>More pages of the history than this are not asked for. Return fetches it.</source>
        <translation>Mehr Seiten des Verlaufs werden nicht abgerufen. Die Eingabetaste ruft ihn ab.</translation>
    </message>
</context>
<context>
    <name>Core</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Continue</source>
        <translation>Fortfahren</translation>
    </message>
    <message>
        <source>Set</source>
        <translation>Übernehmen</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Choose</source>
        <translation>Auswählen</translation>
    </message>
    <message>
        <source>Choose…</source>
        <translation>Auswählen …</translation>
    </message>
    <message>
        <source>Show</source>
        <translation>Anzeigen</translation>
    </message>
    <message>
        <source>Show File</source>
        <translation>Datei anzeigen</translation>
    </message>
    <message>
        <source>Settings…</source>
        <translation>Einstellungen …</translation>
    </message>
    <message>
        <source>Submit…</source>
        <translation>Einreichen …</translation>
    </message>
    <message>
        <source>Submit Now</source>
        <translation>Jetzt einreichen</translation>
    </message>
    <message>
        <source>Sign Only…</source>
        <translation>Nur signieren …</translation>
    </message>
    <message>
        <source>Staple Only…</source>
        <translation>Nur anheften …</translation>
    </message>
    <message>
        <source>Fetch History</source>
        <translation>Verlauf abrufen</translation>
    </message>
    <message>
        <source>Pages at most</source>
        <translation>Höchstens Seiten</translation>
    </message>
    <message>
        <source>Submit Again</source>
        <translation>Erneut einreichen</translation>
    </message>
    <message>
        <source>Staple Again</source>
        <translation>Erneut anheften</translation>
    </message>
    <message>
        <source>Sign Again</source>
        <translation>Erneut signieren</translation>
    </message>
    <message>
        <source>Signs a copy of an item and submits nothing</source>
        <translation>Signiert eine Kopie des Objekts und reicht nichts ein</translation>
    </message>
    <message>
        <source>Lists what the account has submitted</source>
        <translation>Listet auf, was mit dem Konto eingereicht wurde</translation>
    </message>
    <message>
        <source>Asks for the short names of your teams</source>
        <translation>Fragt nach den Kurznamen Ihrer Teams</translation>
    </message>
    <message>
        <source>Attempts to staple an item that has already been submitted</source>
        <translation>Versucht, das Ticket an ein bereits eingereichtes Objekt anzuheften</translation>
    </message>
    <message>
        <source>Apple events</source>
        <translation>Apple-Events</translation>
    </message>
    <message>
        <source>Calendars</source>
        <translation>Kalender</translation>
    </message>
    <message>
        <source>Audio input</source>
        <translation>Audioeingang</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Standort</translation>
    </message>
    <message>
        <source>Photos library</source>
        <translation>Fotomediathek</translation>
    </message>
    <message>
        <source>Address book</source>
        <translation>Adressbuch</translation>
    </message>
    <message>
        <source>Disable library validation</source>
        <translation>Bibliotheksprüfung ausschalten</translation>
    </message>
    <message>
        <source>Allow JIT</source>
        <translation>JIT erlauben</translation>
    </message>
    <message>
        <source>Allow unsigned executable memory</source>
        <translation>Unsignierten ausführbaren Speicher erlauben</translation>
    </message>
    <message>
        <source>Allow DYLD environment variables</source>
        <translation>DYLD-Umgebungsvariablen erlauben</translation>
    </message>
    <message>
        <source>Disable executable page protection</source>
        <translation>Schutz ausführbarer Seiten ausschalten</translation>
    </message>
    <message>
        <source>Debugging tool</source>
        <translation>Werkzeug zur Fehlersuche</translation>
    </message>
    <message>
        <source>loading</source>
        <translation>lädt</translation>
    </message>
    <message>
        <source>ready</source>
        <translation>bereit</translation>
    </message>
    <message>
        <source>interacting</source>
        <translation>fragt</translation>
    </message>
    <message>
        <source>submitting</source>
        <translation>reicht ein</translation>
    </message>
    <message>
        <source>waiting</source>
        <translation>wartet</translation>
    </message>
    <message>
        <source>stapling</source>
        <translation>heftet an</translation>
    </message>
    <message>
        <source>fetching</source>
        <translation>ruft ab</translation>
    </message>
    <message>
        <source>running</source>
        <translation>läuft</translation>
    </message>
    <message>
        <source>done</source>
        <translation>erledigt</translation>
    </message>
    <message>
        <source>failed</source>
        <translation>fehlgeschlagen</translation>
    </message>
    <message>
        <source>cancelled</source>
        <translation>abgebrochen</translation>
    </message>
    <message>
        <source>skipped</source>
        <translation>übersprungen</translation>
    </message>
    <message>
        <source>Make zip archive</source>
        <translation>Zip-Archiv erstellen</translation>
    </message>
    <message>
        <source>Make disk image</source>
        <translation>Image erstellen</translation>
    </message>
    <message>
        <source>Make disk image with DropDMG</source>
        <translation>Image mit DropDMG erstellen</translation>
    </message>
    <message>
        <source>Find bundle identifier</source>
        <translation>Bundle-Kennung suchen</translation>
    </message>
    <message>
        <source>Check credentials</source>
        <translation>Zugangsdaten prüfen</translation>
    </message>
    <message>
        <source>Wait for Apple&apos;s result</source>
        <translation>Auf Apples Ergebnis warten</translation>
    </message>
    <message>
        <source>Staple</source>
        <translation>Anheften</translation>
    </message>
    <message>
        <source>Upload to Apple</source>
        <translation>Zu Apple hochladen</translation>
    </message>
    <message>
        <source>Save entitlements</source>
        <translation>Berechtigungen sichern</translation>
    </message>
    <message>
        <source>Check and sign package</source>
        <translation>Paket prüfen und signieren</translation>
    </message>
    <message>
        <source>Clear extended attributes</source>
        <translation>Erweiterte Attribute entfernen</translation>
    </message>
    <message>
        <source>Lock main script</source>
        <translation>Hauptskript sperren</translation>
    </message>
    <message>
        <source>Sign contents</source>
        <translation>Inhalt signieren</translation>
    </message>
    <message>
        <source>Sign main file</source>
        <translation>Hauptdatei signieren</translation>
    </message>
    <message>
        <source>Check code signature</source>
        <translation>Codesignatur prüfen</translation>
    </message>
    <message>
        <source>Make working copy</source>
        <translation>Arbeitskopie erstellen</translation>
    </message>
    <message>
        <source>Choose an entitlements property list file</source>
        <translation>Wählen Sie eine Property-Liste mit Berechtigungen</translation>
    </message>
    <message>
        <source>Choose an app, plugin, fmplugin, flat package or disk image to copy and submit</source>
        <translation>Wählen Sie App, Plug-in, fmplugin, Paket oder Image, das kopiert und eingereicht wird</translation>
    </message>
    <message>
        <source>Choose the RequestUUID.txt file</source>
        <translation>Wählen Sie die Datei RequestUUID.txt</translation>
    </message>
    <message>
        <source>Choose an app or a directory to copy and sign with the hardened runtime</source>
        <translation>Wählen Sie eine App oder einen Ordner, die kopiert und mit der gehärteten Laufzeit signiert werden</translation>
    </message>
    <message>
        <source>Choose an app, disk image, .pkg, .plugin or .fmplugin to try to staple</source>
        <translation>Wählen Sie App, Image, .pkg, .plugin oder .fmplugin, woran angeheftet werden soll</translation>
    </message>
    <message>
        <source>Choose the “Submitted” folder of the item, or the RequestUUID.txt in it</source>
        <translation>Wählen Sie den Ordner „Submitted“ des Objekts oder die Datei RequestUUID.txt darin</translation>
    </message>
    <message>
        <source>Cannot Go On Waiting</source>
        <translation>Weiterwarten nicht möglich</translation>
    </message>
    <message>
        <source>App-Specific Password</source>
        <translation>Anwendungsspezifisches Passwort</translation>
    </message>
    <message>
        <source>Provider Short Name</source>
        <translation>Kurzname des Anbieters</translation>
    </message>
    <message>
        <source>Extra Entitlements</source>
        <translation>Weitere Berechtigungen</translation>
    </message>
    <message>
        <source>Disk Image Options</source>
        <translation>Optionen für Images</translation>
    </message>
    <message>
        <source>You do not need to enter anything into this field unless your Developer ID is used for more than one development team.

Click the Choose button to choose from your provider short names.</source>
        <translation>Sie müssen in dieses Feld nur etwas eingeben, wenn Ihre Developer ID für mehr als ein Entwicklungsteam verwendet wird.

Klicken Sie auf „Auswählen“, um einen der Kurznamen Ihrer Anbieter auszuwählen.</translation>
    </message>
    <message>
        <source>You do not need to enter anything into this field unless your Developer ID is used for more than development one team.

The Choose button, which lets you choose from the teams you are a member of, is only available if you have Xcode version 11 or later installed.</source>
        <translation>Sie müssen in dieses Feld nur etwas eingeben, wenn Ihre Developer ID für mehr als ein Entwicklungsteam verwendet wird.

Die Taste „Auswählen“, mit der Sie unter Ihren Teams auswählen können, ist nur verfügbar, wenn Xcode 11 oder neuer installiert ist.</translation>
    </message>
    <message>
        <source>If you need to code-sign your app with entitlements not shown here, you can click on the Extra entitlements checkbox and select a .plist file containing them. In the case of conflict, those in the file will override other settings made here.</source>
        <translation>Wenn Ihre App mit Berechtigungen signiert werden soll, die hier nicht aufgeführt sind, können Sie das Feld „Weitere Berechtigungen“ ankreuzen und eine .plist-Datei auswählen, die sie enthält. Bei Widersprüchen hat die Datei Vorrang vor den Einstellungen hier.</translation>
    </message>
    <message>
        <source>When submitting other than a disk image file, Sealwright can either upload a .zip version of the file after signing it, and then staple the signed file, or it can upload a locked disk image of the file, and then staple that disk image ready for distribution.

If you choose to create a disk image and you have the application DropDMG.app installed, you can choose a DropDMG configuration to be used. This allows you greater control over the arrangement and contents of the disk image.

Otherwise Sealwright will create a disk image containing just the submitted file.

The notarization process only accepts read-only Mac .dmg files, so if you choose a DropDMG configuration that specifies an incompatible format, notarization will fail.</source>
        <translation>Wenn Sie etwas anderes als ein Image einreichen, kann Sealwright entweder die Datei signieren, als .zip hochladen und das Ticket dann an die signierte Datei anheften, oder ein schreibgeschütztes Image der Datei hochladen und das Ticket an dieses Image anheften, das danach verteilt werden kann.

Wenn Sie ein Image erstellen lassen und DropDMG.app installiert ist, können Sie eine Konfiguration von DropDMG auswählen. Damit bestimmen Sie Anordnung und Inhalt des Images genauer.

Sonst erstellt Sealwright ein Image, das nur die eingereichte Datei enthält.

Die Beglaubigung nimmt nur schreibgeschützte .dmg-Dateien an. Wenn Ihre DropDMG-Konfiguration ein anderes Format vorsieht, schlägt die Beglaubigung fehl.</translation>
    </message>
    <message>
        <source>Missing Apple ID</source>
        <translation>Apple-ID fehlt</translation>
    </message>
    <message>
        <source>You need to enter your Apple ID.</source>
        <translation>Sie müssen Ihre Apple-ID eingeben.</translation>
    </message>
    <message>
        <source>Missing Password</source>
        <translation>Passwort fehlt</translation>
    </message>
    <message>
        <source>You need to enter the key to an application-specific password you have added to your login Keychain.</source>
        <translation>Sie müssen den Namen eines anwendungsspezifischen Passworts eingeben, das Sie Ihrem Anmeldeschlüsselbund hinzugefügt haben.</translation>
    </message>
    <message>
        <source>Signing Successful</source>
        <translation>Signieren erfolgreich</translation>
    </message>
    <message>
        <source>Signing of &apos;%1&apos; has been completed.</source>
        <translation>„%1“ ist signiert.</translation>
    </message>
    <message>
        <source>Stapling Successful</source>
        <translation>Anheften erfolgreich</translation>
    </message>
    <message>
        <source>The file &apos;%1&apos; is now ready for distribution.</source>
        <translation>Die Datei „%1“ kann jetzt verteilt werden.</translation>
    </message>
    <message>
        <source>Set New Document Defaults</source>
        <translation>Vorgaben für neue Dokumente setzen</translation>
    </message>
    <message>
        <source>Click Set if you want the values, settings and entitlements in this document saved and used in newly created documents. This includes any entered Apple ID, app-specific password, and provider short name.</source>
        <translation>Klicken Sie auf „Übernehmen“, wenn Werte, Einstellungen und Berechtigungen dieses Dokuments gesichert und für neue Dokumente verwendet werden sollen. Das schließt Apple-ID, anwendungsspezifisches Passwort und Kurznamen des Anbieters ein, soweit eingegeben.</translation>
    </message>
    <message>
        <source>Reset Document Defaults</source>
        <translation>Vorgaben für Dokumente zurücksetzen</translation>
    </message>
    <message>
        <source>Click Reset if you want the values, settings and entitlements used for newly created documents reset to their factory values. The Apple ID, app-specific password, and provider short name will be set to empty values.</source>
        <translation>Klicken Sie auf „Zurücksetzen“, wenn Werte, Einstellungen und Berechtigungen für neue Dokumente wieder so sein sollen wie ausgeliefert. Apple-ID, anwendungsspezifisches Passwort und Kurzname des Anbieters sind danach leer.</translation>
    </message>
    <message>
        <source>File Not Found</source>
        <translation>Datei nicht gefunden</translation>
    </message>
    <message>
        <source>The file:

‘%1’

has been moved or deleted.</source>
        <translation>Die Datei

„%1“

wurde bewegt oder gelöscht.</translation>
    </message>
    <message>
        <source>No Identities Found</source>
        <translation>Keine Identitäten gefunden</translation>
    </message>
    <message>
        <source>No Developer ID codesigning identities have been found.</source>
        <translation>Es wurde keine Developer-ID-Identität zum Signieren gefunden.</translation>
    </message>
    <message>
        <source>No Developer ID identities found</source>
        <translation>Keine Developer ID gefunden</translation>
    </message>
    <message>
        <source>Cannot Read Extra Entitlements</source>
        <translation>Weitere Berechtigungen nicht lesbar</translation>
    </message>
    <message>
        <source>Process Cancelled</source>
        <translation>Vorgang abgebrochen</translation>
    </message>
    <message>
        <source>The app has been uploaded, but notarizing has not been confirmed. Once you get a confirmation email on your Apple ID email account, you can staple the app using the Staple Only button.</source>
        <translation>Die App wurde hochgeladen, aber die Beglaubigung ist nicht bestätigt. Wenn Sie an die Adresse Ihrer Apple-ID eine Bestätigung bekommen haben, können Sie das Ticket mit „Nur anheften“ an die App anheften.</translation>
    </message>
    <message>
        <source>Uploading of the app may not have been completed.</source>
        <translation>Die App wurde vielleicht nicht vollständig hochgeladen.</translation>
    </message>
    <message>
        <source>Closing now may abort the uploading of your app.</source>
        <translation>Wenn Sie jetzt schließen, wird das Hochladen Ihrer App vielleicht abgebrochen.</translation>
    </message>
    <message>
        <source>The app is not yet approved and stapled.</source>
        <translation>Die App ist noch nicht bestätigt, und das Ticket ist noch nicht angeheftet.</translation>
    </message>
    <message>
        <source>This window is busy.</source>
        <translation>Dieses Fenster ist beschäftigt.</translation>
    </message>
    <message>
        <source>Continue Closing?</source>
        <translation>Trotzdem schließen?</translation>
    </message>
    <message>
        <source>Installer Identity Not Found</source>
        <translation>Installer-Identität nicht gefunden</translation>
    </message>
    <message>
        <source>Packages require a &apos;Developer ID Installer&apos; certificate that matches the identity you have chosen (%1).</source>
        <translation>Pakete brauchen ein Zertifikat „Developer ID Installer“, das zur gewählten Identität passt (%1).</translation>
    </message>
    <message>
        <source>Cannot Submit Item</source>
        <translation>Objekt kann nicht eingereicht werden</translation>
    </message>
    <message>
        <source>Cannot List Provider Names</source>
        <translation>Anbieter können nicht aufgelistet werden</translation>
    </message>
    <message>
        <source>This command relies on Xcode 11 or later being available.</source>
        <translation>Dieser Befehl braucht Xcode 11 oder neuer.</translation>
    </message>
    <message>
        <source>Provider Short Name Not Needed</source>
        <translation>Kurzname des Anbieters nicht nötig</translation>
    </message>
    <message>
        <source>You belong to only one Apple development team, so you do not need to enter a provider short name.</source>
        <translation>Sie gehören nur zu einem Entwicklungsteam und müssen keinen Kurznamen eingeben.</translation>
    </message>
    <message>
        <source>Incorrect Application?</source>
        <translation>Falsche App?</translation>
    </message>
    <message>
        <source>Are you sure that is the version of the app copied and submitted for notarizing, and not the original un-signed version? It should normally be found inside a folder called &apos;%1&apos;.

Press Continue if you think you have the correct version.</source>
        <translation>Ist das sicher die Version der App, die kopiert und zur Beglaubigung eingereicht wurde, und nicht die ursprüngliche, unsignierte? Normalerweise liegt sie in einem Ordner namens „%1“.

Klicken Sie auf „Fortfahren“, wenn es die richtige Version ist.</translation>
    </message>
    <message>
        <source>Xcode or Transporter Not Found</source>
        <translation>Xcode oder Transporter nicht gefunden</translation>
    </message>
    <message>
        <source>Notarization cannot be performed without either Xcode.app 10.2 or later installed and running, or Transporter.app 1.1 or later installed. Both are free downloads from the Apple Store. You should install one or the other and run it at least once before trying to run Sealwright again.

Sealwright will now quit.</source>
        <translation>Ohne Xcode.app ab Version 10.2, installiert und gestartet, oder Transporter.app ab Version 1.1 kann nichts beglaubigt werden. Beide gibt es kostenlos im Store von Apple. Installieren Sie eines davon und starten Sie es wenigstens einmal, bevor Sie Sealwright wieder starten.

Sealwright wird jetzt beendet.</translation>
    </message>
    <message>
        <source>See the log for details.</source>
        <translation>Näheres steht im Protokoll.</translation>
    </message>
    <message>
        <source>Cannot Create Working Folder</source>
        <translation>Arbeitsordner kann nicht angelegt werden</translation>
    </message>
    <message>
        <source>Cannot Empty Working Folder</source>
        <translation>Arbeitsordner kann nicht geleert werden</translation>
    </message>
    <message>
        <source>Failed to create working folder &apos;%1&apos;: %2</source>
        <translation>Der Arbeitsordner „%1“ kann nicht angelegt werden: %2</translation>
    </message>
    <message>
        <source>Failed to empty working folder &apos;%1&apos;: %2</source>
        <translation>Der Arbeitsordner „%1“ kann nicht geleert werden: %2</translation>
    </message>
    <message>
        <source>Failed to copy file to working folder &apos;%1&apos;: %2</source>
        <translation>Die Datei kann nicht in den Arbeitsordner „%1“ kopiert werden: %2</translation>
    </message>
    <message>
        <source>Cannot Copy File</source>
        <translation>Datei kann nicht kopiert werden</translation>
    </message>
    <message>
        <source>The designated extra entitlements file at &apos;%1&apos; is missing.</source>
        <translation>Die Datei „%1“ mit weiteren Berechtigungen fehlt.</translation>
    </message>
    <message>
        <source>Cannot Create Entitlements</source>
        <translation>Berechtigungen können nicht erstellt werden</translation>
    </message>
    <message>
        <source>Cannot Save Entitlements</source>
        <translation>Berechtigungen können nicht gesichert werden</translation>
    </message>
    <message>
        <source>Error Signing .pkg File</source>
        <translation>Fehler beim Signieren der .pkg-Datei</translation>
    </message>
    <message>
        <source>Error Verifying Signing</source>
        <translation>Fehler beim Prüfen der Signatur</translation>
    </message>
    <message>
        <source>Error Signing Code</source>
        <translation>Fehler beim Signieren</translation>
    </message>
    <message>
        <source>Error Clearing Attributes</source>
        <translation>Fehler beim Entfernen der Attribute</translation>
    </message>
    <message>
        <source>No signable items found.</source>
        <translation>Es wurde nichts gefunden, das signiert werden kann.</translation>
    </message>
    <message>
        <source>Stapling Failed</source>
        <translation>Anheften fehlgeschlagen</translation>
    </message>
    <message>
        <source>Error Verifying Code Signing</source>
        <translation>Fehler beim Prüfen der Codesignatur</translation>
    </message>
    <message>
        <source>Invalid Apple ID, or invalid key for app-specific password in login keychain.</source>
        <translation>Ungültige Apple-ID oder ungültiger Name des anwendungsspezifischen Passworts im Anmeldeschlüsselbund.</translation>
    </message>
    <message>
        <source>Unknown problem using altool. Check that the app-specific pasword, Apple ID, and team provider name are correct.</source>
        <translation>Unbekannter Fehler mit altool. Prüfen Sie, ob anwendungsspezifisches Passwort, Apple-ID und Name des Anbieters stimmen.</translation>
    </message>
    <message>
        <source>Cannot Continue</source>
        <translation>Es geht nicht weiter</translation>
    </message>
    <message>
        <source>Error Uploading File</source>
        <translation>Fehler beim Hochladen</translation>
    </message>
    <message>
        <source>No RequestUUID Returned</source>
        <translation>Keine RequestUUID erhalten</translation>
    </message>
    <message>
        <source>No RequestUUID returned from upload.</source>
        <translation>Das Hochladen ergab keine RequestUUID.</translation>
    </message>
    <message>
        <source>Error Making Disk Image</source>
        <translation>Fehler beim Erstellen des Images</translation>
    </message>
    <message>
        <source>Error Making Archive</source>
        <translation>Fehler beim Erstellen des Archivs</translation>
    </message>
    <message>
        <source>Cannot Fetch History</source>
        <translation>Verlauf kann nicht abgerufen werden</translation>
    </message>
    <message>
        <source>Notarization Failed</source>
        <translation>Beglaubigung fehlgeschlagen</translation>
    </message>
    <message>
        <source>Request UUID Not Found</source>
        <translation>Request-UUID nicht gefunden</translation>
    </message>
    <message>
        <source>Failed to Retrieve Info</source>
        <translation>Auskunft nicht erhalten</translation>
    </message>
    <message>
        <source>Problem Retrieving Apple Team Details</source>
        <translation>Problem beim Abrufen der Teams</translation>
    </message>
    <message>
        <source>Problem With Apple Team Details</source>
        <translation>Problem mit den Angaben zu den Teams</translation>
    </message>
    <message>
        <source>No providers were found in the data returned.</source>
        <translation>Die Antwort enthält keine Anbieter.</translation>
    </message>
    <message>
        <source>Not applicable</source>
        <translation>Nicht anwendbar</translation>
    </message>
    <message>
        <source>None found</source>
        <translation>Keine gefunden</translation>
    </message>
    <message>
        <source>The keychain has no identity “%1”.</source>
        <translation>Im Schlüsselbund ist keine Identität „%1“.</translation>
    </message>
    <message>
        <source>There is no profile “%1”.</source>
        <translation>Es gibt kein Profil „%1“.</translation>
    </message>
    <message>
        <source>“%1” cannot be the name of a profile.</source>
        <translation>„%1“ kann kein Name eines Profils sein.</translation>
    </message>
    <message>
        <source>The active extra entitlements file is ‘%1’.</source>
        <translation>Die Datei mit weiteren Berechtigungen ist „%1“.</translation>
    </message>
    <message>
        <source>Notarizing uses a tool that requires password authorization. This means you need to do two things:

• Set up an app-specific password. You do this by signing into you Apple ID account page &lt;%1&gt;, and clicking Generate Password below App-Specific Passwords.

• Add the app-specific password to your login keychain. Open Keychain Access.app, select the login keychain on the left, choose File -&gt; New Password Item…, and enter the name of your app-specific password as the Keychain Item Name, enter your Apple ID for the Account Name, and enter the actual app-specific password in the Password field.

You should enter the name of the app-specific password in the selected field.</source>
        <translation>Zum Beglaubigen dient ein Werkzeug, das sich mit einem Passwort ausweist. Dafür ist zweierlei nötig:

• Legen Sie ein anwendungsspezifisches Passwort an. Melden Sie sich dazu auf der Seite Ihrer Apple-ID &lt;%1&gt; an, und klicken Sie unter „Anwendungsspezifische Passwörter“ auf „Passwort erstellen“.

• Legen Sie das anwendungsspezifische Passwort in Ihrem Schlüsselbund „Anmeldung“ ab. Öffnen Sie die Schlüsselbundverwaltung, wählen Sie links den Schlüsselbund „Anmeldung“ und dann „Ablage -&gt; Neues Passwort …“. Geben Sie den Namen des Passworts als Namen des Objekts ein, Ihre Apple-ID als Account und das anwendungsspezifische Passwort als Passwort.

In das ausgewählte Feld gehört der Name des anwendungsspezifischen Passworts.</translation>
    </message>
</context>
<context>
    <name>sealwright::CredentialsGroup</name>
    <message>
        <source>Credentials</source>
        <translation>Zugangsdaten</translation>
    </message>
    <message>
        <source>Apple &amp;ID</source>
        <translation>Apple-&amp;ID</translation>
    </message>
    <message>
        <source>Needed for a submission.</source>
        <translation>Wird zum Einreichen gebraucht.</translation>
    </message>
    <message>
        <source>App-specific &amp;password</source>
        <translation>Anwendungsspezifisches &amp;Passwort</translation>
    </message>
    <message>
        <source>Name of its keychain item</source>
        <translation>Name des Eintrags</translation>
    </message>
    <message>
        <source>Needed for a submission: the name of a keychain item.</source>
        <translation>Wird zum Einreichen gebraucht: der Name eines Eintrags im Schlüsselbund.</translation>
    </message>
    <message>
        <source>In the keychain.</source>
        <translation>Im Schlüsselbund.</translation>
    </message>
    <message>
        <source>Not found in the keychain. Account &gt; Keychain… can add it.</source>
        <translation>Nicht im Schlüsselbund. „Konto &gt; Schlüsselbund …“ kann es hinzufügen.</translation>
    </message>
    <message>
        <source>Provider short &amp;name</source>
        <translation>Kurz&amp;name des Anbieters</translation>
    </message>
    <message>
        <source>Only with several teams</source>
        <translation>Mehrere Teams</translation>
    </message>
</context>
<context>
    <name>sealwright::DropOverlay</name>
    <message>
        <source>Drop “%1” here</source>
        <translation>„%1“ hier ablegen</translation>
    </message>
    <message>
        <source>Drop %1 items here</source>
        <translation>%1 Objekte hier ablegen</translation>
    </message>
</context>
<context>
    <name>sealwright::EditCommands</name>
    <message>
        <source>Cu&amp;t</source>
        <translation>&amp;Ausschneiden</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>&amp;Paste</source>
        <translation>&amp;Einfügen</translation>
    </message>
    <message>
        <source>Select &amp;All</source>
        <translation>A&amp;lles auswählen</translation>
    </message>
</context>
<context>
    <name>sealwright::EntitlementsGroup</name>
    <message>
        <source>Entitlements</source>
        <translation>Berechtigungen</translation>
    </message>
    <message>
        <source>Resource access</source>
        <translation>Zugriff auf Ressourcen</translation>
    </message>
    <message>
        <source>Hardened runtime exceptions</source>
        <translation>Ausnahmen von der gehärteten Laufzeit</translation>
    </message>
    <message>
        <source>Debugging</source>
        <translation>Fehlersuche</translation>
    </message>
    <message>
        <source>E&amp;xtra entitlements</source>
        <translation>&amp;Weitere Berechtigungen</translation>
    </message>
    <message>
        <source>Asks for a property list, whose entries override the settings above</source>
        <translation>Fragt nach einer Property-Liste, deren Einträge Vorrang vor den Einstellungen oben haben</translation>
    </message>
    <message>
        <source>Extra entitlements</source>
        <translation>Weitere Berechtigungen</translation>
    </message>
</context>
<context>
    <name>sealwright::ExaminePane</name>
    <message>
        <source>Examination</source>
        <translation>Untersuchung</translation>
    </message>
    <message>
        <source>Search the examination</source>
        <translation>Untersuchung durchsuchen</translation>
    </message>
    <message>
        <source>Findings and code</source>
        <translation>Befunde und Code</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>What is found</source>
        <translation>Befund</translation>
    </message>
    <message>
        <source>Looking at the item…</source>
        <translation>Das Objekt wird untersucht …</translation>
    </message>
    <message>
        <source>Choose or drop an item to see what would be refused.</source>
        <translation>Wählen Sie ein Objekt aus oder legen Sie eines hier ab, um zu sehen, was abgelehnt würde.</translation>
    </message>
    <message>
        <source>The item would be refused.</source>
        <translation>Das Objekt würde abgelehnt.</translation>
    </message>
    <message>
        <source>Nothing was found that would be refused.</source>
        <translation>Nichts gefunden, was abgelehnt würde.</translation>
    </message>
    <message>
        <source>Findings</source>
        <translation>Befunde</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Compare…</source>
        <translation>Vergleichen …</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Choose the folder of an earlier run, or an item</source>
        <translation>Wählen Sie den Ordner eines früheren Laufs oder ein Objekt aus</translation>
    </message>
    <message>
        <source>Comparing…</source>
        <translation>Es wird verglichen …</translation>
    </message>
    <message>
        <source>Nothing has changed since %1.</source>
        <translation>Seit %1 hat sich nichts geändert.</translation>
    </message>
    <message>
        <source>The changes since %1 are listed first.</source>
        <translation>Die Änderungen seit „%1“ stehen zuoberst.</translation>
    </message>
</context>
<context>
    <name>sealwright::FindBar</name>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Empties the field</source>
        <translation>Leert das Feld</translation>
    </message>
    <message>
        <source>Find in log</source>
        <translation>Im Protokoll suchen</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>The place before (Shift+F3)</source>
        <translation>Die Stelle davor (Umschalt+F3)</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Weiter</translation>
    </message>
    <message>
        <source>The next place (F3)</source>
        <translation>Die nächste Stelle (F3)</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Puts the search away (Esc)</source>
        <translation>Beendet die Suche (Esc)</translation>
    </message>
    <message>
        <source>Not found</source>
        <translation>Nicht gefunden</translation>
    </message>
    <message>
        <source>more than %1</source>
        <translation>mehr als %1</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
</context>
<context>
    <name>sealwright::FrameWindow</name>
    <message>
        <source>Show &amp;Previous Tab</source>
        <translation>&amp;Vorherigen Tab zeigen</translation>
    </message>
    <message>
        <source>Show &amp;Next Tab</source>
        <translation>&amp;Nächsten Tab zeigen</translation>
    </message>
    <message>
        <source>Move Tab &amp;Left</source>
        <translation>Tab nach &amp;links bewegen</translation>
    </message>
    <message>
        <source>Move Tab &amp;Right</source>
        <translation>Tab nach &amp;rechts bewegen</translation>
    </message>
    <message>
        <source>&amp;Move Tab to New Window</source>
        <translation>Tab in neues &amp;Fenster bewegen</translation>
    </message>
    <message>
        <source>%1 – waits for an answer</source>
        <translation>%1 – wartet auf eine Antwort</translation>
    </message>
    <message>
        <source>%1 – %2</source>
        <translation>%1 – %2</translation>
    </message>
</context>
<context>
    <name>sealwright::HistoryModel</name>
    <message>
        <source>Item</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>Date</source>
        <translation>Datum</translation>
    </message>
    <message>
        <source>Status</source>
        <translation>Status</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
    <message>
        <source>Identifier</source>
        <translation>Kennung</translation>
    </message>
</context>
<context>
    <name>sealwright::HistoryPane</name>
    <message>
        <source>The submissions of the account stand here once “Fetch History” has asked for them.</source>
        <translation>Hier stehen die Einreichungen des Kontos, sobald „Verlauf abrufen“ sie erfragt hat.</translation>
    </message>
    <message>
        <source>Search the history</source>
        <translation>Verlauf durchsuchen</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Suchen</translation>
    </message>
    <message>
        <source>Report</source>
        <translation>Bericht</translation>
    </message>
    <message>
        <source>Prints what the service has on record</source>
        <translation>Gibt aus, was der Dienst gespeichert hat</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Opens the service&apos;s log in the browser</source>
        <translation>Öffnet das Protokoll des Dienstes im Browser</translation>
    </message>
    <message>
        <source>Copy Identifier</source>
        <translation>Kennung kopieren</translation>
    </message>
    <message>
        <source>Staple</source>
        <translation>Anheften</translation>
    </message>
    <message>
        <source>Staples the item, which lies in a folder of this document</source>
        <translation>Heftet das Ticket an das Objekt an, das in einem Ordner dieses Dokuments liegt</translation>
    </message>
</context>
<context>
    <name>sealwright::ImportForm</name>
    <message>
        <source>&amp;Certificate with its key</source>
        <translation>&amp;Zertifikat mit Schlüssel</translation>
    </message>
    <message>
        <source>A .p12, .pem or .cer file</source>
        <translation>Eine Datei .p12, .pem oder .cer</translation>
    </message>
    <message>
        <source>Certificates and keys (*.p12 *.pfx *.pem *.cer *.crt *.key);;All files (*)</source>
        <translation>Zertifikate und Schlüssel (*.p12 *.pfx *.pem *.cer *.crt *.key);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>&amp;Passphrase of the file</source>
        <translation>&amp;Kennwort der Datei</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keins</translation>
    </message>
    <message>
        <source>I&amp;mport</source>
        <translation>I&amp;mportieren</translation>
    </message>
</context>
<context>
    <name>sealwright::IssueTable</name>
    <message>
        <source>What the notary service finds fault with stands here.</source>
        <translation>Hier steht, was der Beglaubigungsdienst beanstandet.</translation>
    </message>
    <message>
        <source>What the service said</source>
        <translation>Was der Dienst gesagt hat</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copies the selected rows, or all of them</source>
        <translation>Kopiert die ausgewählten Zeilen, sonst alle</translation>
    </message>
    <message>
        <source>Open Link</source>
        <translation>Verweis öffnen</translation>
    </message>
</context>
<context>
    <name>sealwright::ItemHeader</name>
    <message>
        <source>Chooses an item, and submits it</source>
        <translation>Wählt ein Objekt und reicht es ein</translation>
    </message>
    <message>
        <source>Icon of the item</source>
        <translation>Symbol des Objekts</translation>
    </message>
    <message>
        <source>What is going on</source>
        <translation>Was gerade geschieht</translation>
    </message>
    <message>
        <source>About the item</source>
        <translation>Über das Objekt</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>No item chosen</source>
        <translation>Kein Objekt ausgewählt</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Stops the run in progress (Ctrl+.)</source>
        <translation>Bricht den laufenden Vorgang ab (Strg+.)</translation>
    </message>
    <message>
        <source>Drop one on this window, or press Submit…</source>
        <translation>Legen Sie eines auf dieses Fenster, oder drücken Sie „Einreichen …“</translation>
    </message>
    <message>
        <source>Practice</source>
        <translation>Übung</translation>
    </message>
    <message>
        <source>The notary service of this machine is asked, and not Apple's. What it notarizes is accepted by this machine alone.</source>
        <translation>Gefragt wird der Beglaubigungsdienst dieses Rechners, nicht der von Apple. Was er beglaubigt, gilt nur auf diesem Rechner.</translation>
    </message>
</context>
<context>
    <name>sealwright::KeychainForm</name>
    <message>
        <source>Choose…</source>
        <translation>Auswählen …</translation>
    </message>
    <message>
        <source>Choose: %1</source>
        <translation>Auswählen: %1</translation>
    </message>
    <message>
        <source>Choose a file</source>
        <translation>Datei auswählen</translation>
    </message>
    <message>
        <source>At work…</source>
        <translation>Wird ausgeführt …</translation>
    </message>
    <message>
        <source>Done.</source>
        <translation>Erledigt.</translation>
    </message>
    <message>
        <source>Choose the file.</source>
        <translation>Wählen Sie die Datei aus.</translation>
    </message>
    <message>
        <source>There is no such file.</source>
        <translation>Es gibt keine solche Datei.</translation>
    </message>
    <message>
        <source>Enter the Apple ID of the account.</source>
        <translation>Geben Sie die Apple-ID des Kontos ein.</translation>
    </message>
    <message>
        <source>Give it a name of two letters or more.</source>
        <translation>Geben Sie einen Namen aus mindestens zwei Buchstaben ein.</translation>
    </message>
</context>
<context>
    <name>sealwright::KeychainWindow</name>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
    <message>
        <source>Keychain</source>
        <translation>Schlüsselbund</translation>
    </message>
    <message>
        <source>Identities</source>
        <translation>Identitäten</translation>
    </message>
    <message>
        <source>Keys and Passwords</source>
        <translation>Schlüssel und Passwörter</translation>
    </message>
    <message>
        <source>Protection</source>
        <translation>Schutz</translation>
    </message>
    <message>
        <source>Start Sealwright Anew</source>
        <translation>Sealwright neu starten</translation>
    </message>
    <message>
        <source>Sealwright reads the identities when it starts.</source>
        <translation>Sealwright liest die Identitäten beim Start.</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Add an identity</source>
        <translation>Identität hinzufügen</translation>
    </message>
    <message>
        <source>Import</source>
        <translation>Importieren</translation>
    </message>
    <message>
        <source>Make One to Practise</source>
        <translation>Eine zum Üben erstellen</translation>
    </message>
    <message>
        <source>Add a key or a password</source>
        <translation>Schlüssel oder Passwort hinzufügen</translation>
    </message>
    <message>
        <source>API key</source>
        <translation>API-Schlüssel</translation>
    </message>
    <message>
        <source>App-specific password</source>
        <translation>Anwendungsspezifisches Passwort</translation>
    </message>
    <message>
        <source>Item by its &amp;name</source>
        <translation>Eintrag mit dem &amp;Namen</translation>
    </message>
    <message>
        <source>“%1” is in the keychain.</source>
        <translation>„%1“ ist im Schlüsselbund.</translation>
    </message>
    <message>
        <source>&amp;Look Up</source>
        <translation>N&amp;achsehen</translation>
    </message>
    <message>
        <source>D&amp;elete</source>
        <translation>Lösch&amp;en</translation>
    </message>
    <message>
        <source>Done.</source>
        <translation>Erledigt.</translation>
    </message>
</context>
<context>
    <name>sealwright::LockedBanner</name>
    <message>
        <source>Keychain</source>
        <translation>Schlüsselbund</translation>
    </message>
    <message>
        <source>The keychain is locked: nothing can be signed or submitted.</source>
        <translation>Der Schlüsselbund ist gesperrt: Nichts kann signiert oder eingereicht werden.</translation>
    </message>
    <message>
        <source>Unlock…</source>
        <translation>Entsperren …</translation>
    </message>
</context>
<context>
    <name>sealwright::LogPane</name>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Drop an app, plug-in, package or disk image on this window, or press %1</source>
        <translation>Legen Sie App, Plug-in, Paket oder Image auf dieses Fenster, oder drücken Sie „%1“</translation>
    </message>
    <message>
        <source>Lo&amp;g</source>
        <translation>Protok&amp;oll</translation>
    </message>
    <message>
        <source>&amp;Keep log between runs</source>
        <translation>&amp;Zwischen Läufen behalten</translation>
    </message>
    <message>
        <source>Show in the log</source>
        <translation>Im Protokoll zeigen</translation>
    </message>
    <message>
        <source>Which lines are in sight; the log keeps all of them</source>
        <translation>Welche Zeilen zu sehen sind; das Protokoll behält alle</translation>
    </message>
    <message>
        <source>All</source>
        <translation>Alles</translation>
    </message>
    <message>
        <source>Steps</source>
        <translation>Schritte</translation>
    </message>
    <message>
        <source>Errors</source>
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Empties the log of this window, not the one in the item&apos;s folder</source>
        <translation>Leert das Protokoll dieses Fensters, nicht das im Ordner des Objekts</translation>
    </message>
    <message>
        <source>A copy of the item is worked on, and the original is kept. To begin, press %1</source>
        <translation>Gearbeitet wird an einer Kopie, das Original bleibt erhalten. Zum Beginnen drücken Sie „%1“</translation>
    </message>
</context>
<context>
    <name>sealwright::LogView</name>
    <message>
        <source>▾ Fold</source>
        <translation>▾ Zuklappen</translation>
    </message>
    <message>
        <source>Show All of This Entry</source>
        <translation>Ganzen Eintrag zeigen</translation>
    </message>
    <message>
        <source>Fold This Entry</source>
        <translation>Eintrag zuklappen</translation>
    </message>
    <message>
        <source>▸ 1 more line</source>
        <translation>▸ 1 weitere Zeile</translation>
    </message>
    <message>
        <source>▸ %1 more lines</source>
        <translation>▸ %1 weitere Zeilen</translation>
    </message>
    <message>
        <source>No errors</source>
        <translation>Keine Fehler</translation>
    </message>
    <message>
        <source>No steps</source>
        <translation>Keine Schritte</translation>
    </message>
</context>
<context>
    <name>sealwright::MainMenu</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Sa&amp;ve Log As…</source>
        <translation>Protokoll sichern &amp;unter …</translation>
    </message>
    <message>
        <source>Page Set&amp;up…</source>
        <translation>Seite ein&amp;richten …</translation>
    </message>
    <message>
        <source>&amp;Print Log…</source>
        <translation>Protokoll &amp;drucken …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;New</source>
        <translation>&amp;Neu</translation>
    </message>
    <message>
        <source>New &amp;Window</source>
        <translation>Neues &amp;Fenster</translation>
    </message>
    <message>
        <source>New &amp;Tab</source>
        <translation>Neuer &amp;Tab</translation>
    </message>
    <message>
        <source>&amp;Submit…</source>
        <translation>&amp;Einreichen …</translation>
    </message>
    <message>
        <source>Si&amp;gn Only…</source>
        <translation>Nur si&amp;gnieren …</translation>
    </message>
    <message>
        <source>Staple &amp;Only…	Ctrl+O</source>
        <translation>Nur an&amp;heften …	Ctrl+O</translation>
    </message>
    <message>
        <source>Go On Wa&amp;iting…</source>
        <translation>&amp;Weiter warten …</translation>
    </message>
    <message>
        <source>C&amp;ancel	Ctrl+.</source>
        <translation>&amp;Abbrechen	Ctrl+.</translation>
    </message>
    <message>
        <source>Submit Again</source>
        <translation>Erneut einreichen</translation>
    </message>
    <message>
        <source>&amp;Close</source>
        <translation>S&amp;chließen</translation>
    </message>
    <message>
        <source>Close All Ta&amp;bs</source>
        <translation>Alle Tab&amp;s schließen</translation>
    </message>
    <message>
        <source>Close A&amp;ll</source>
        <translation>A&amp;lle schließen</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>C&amp;lear Log</source>
        <translation>&amp;Protokoll leeren</translation>
    </message>
    <message>
        <source>Settin&amp;gs…</source>
        <translation>Einstellun&amp;gen …</translation>
    </message>
    <message>
        <source>&amp;Find…</source>
        <translation>&amp;Suchen …</translation>
    </message>
    <message>
        <source>Find &amp;Next</source>
        <translation>&amp;Weitersuchen</translation>
    </message>
    <message>
        <source>Find Pre&amp;vious</source>
        <translation>&amp;Rückwärts suchen</translation>
    </message>
    <message>
        <source>&amp;Set Document Defaults…</source>
        <translation>&amp;Vorgaben für Dokumente setzen …</translation>
    </message>
    <message>
        <source>&amp;Reset Document Defaults…</source>
        <translation>V&amp;orgaben für Dokumente zurücksetzen …</translation>
    </message>
    <message>
        <source>&amp;Account</source>
        <translation>&amp;Konto</translation>
    </message>
    <message>
        <source>Fetch &amp;History</source>
        <translation>&amp;Verlauf abrufen</translation>
    </message>
    <message>
        <source>Info for the &amp;Last Upload</source>
        <translation>Auskunft zum &amp;letzten Hochladen</translation>
    </message>
    <message>
        <source>Info for the UUID on the &amp;Clipboard</source>
        <translation>Auskunft zur UUID in der &amp;Zwischenablage</translation>
    </message>
    <message>
        <source>Info for the UUID in a &amp;File…</source>
        <translation>Auskunft zur UUID in einer &amp;Datei …</translation>
    </message>
    <message>
        <source>Choose &amp;Provider Short Name…</source>
        <translation>Kurznamen des &amp;Anbieters auswählen …</translation>
    </message>
    <message>
        <source>Set &amp;Up…</source>
        <translation>&amp;Einrichten …</translation>
    </message>
    <message>
        <source>&amp;Keychain…</source>
        <translation>&amp;Schlüsselbund …</translation>
    </message>
    <message>
        <source>&amp;Window</source>
        <translation>&amp;Fenster</translation>
    </message>
    <message>
        <source>M&amp;erge All Windows</source>
        <translation>Alle Fenster &amp;zusammenführen</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;App-Specific Password</source>
        <translation>&amp;Anwendungsspezifisches Passwort</translation>
    </message>
    <message>
        <source>&amp;Provider Short Name</source>
        <translation>&amp;Kurzname des Anbieters</translation>
    </message>
    <message>
        <source>&amp;Extra Entitlements</source>
        <translation>&amp;Weitere Berechtigungen</translation>
    </message>
    <message>
        <source>&amp;Disk Image Options</source>
        <translation>&amp;Optionen für Images</translation>
    </message>
    <message>
        <source>&amp;Website</source>
        <translation>We&amp;bsite</translation>
    </message>
    <message>
        <source>Users&apos; &amp;Forum</source>
        <translation>&amp;Forum der Nutzer</translation>
    </message>
    <message>
        <source>&amp;Send Us Email</source>
        <translation>&amp;E-Mail an uns</translation>
    </message>
    <message>
        <source>A&amp;bout Sealwright</source>
        <translation>&amp;Über Sealwright</translation>
    </message>
</context>
<context>
    <name>sealwright::NotaryServiceRow</name>
    <message>
        <source>Address of the notary service</source>
        <translation>Adresse des Beglaubigungsdienstes</translation>
    </message>
    <message>
        <source>Apple&apos;s</source>
        <translation>Der von Apple</translation>
    </message>
    <message>
        <source>That of this machine, to practise</source>
        <translation>Dienst dieses Rechners, zum Üben</translation>
    </message>
    <message>
        <source>At another address</source>
        <translation>Unter einer anderen Adresse</translation>
    </message>
</context>
<context>
    <name>sealwright::OutcomeBanner</name>
    <message>
        <source>Outcome</source>
        <translation>Ergebnis</translation>
    </message>
    <message>
        <source>Show in Folder</source>
        <translation>Ordner zeigen</translation>
    </message>
    <message>
        <source>Copy Identifier</source>
        <translation>Kennung kopieren</translation>
    </message>
    <message>
        <source>Go On Waiting</source>
        <translation>Weiter warten</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Noch einmal</translation>
    </message>
    <message>
        <source>New Document</source>
        <translation>Neues Dokument</translation>
    </message>
    <message>
        <source>This run has stopped</source>
        <translation>Dieser Lauf hat angehalten</translation>
    </message>
    <message>
        <source>The cancel before it has stopped it at its beginning, and nothing goes on here. Close this document, and go on in a new one.</source>
        <translation>Der Abbruch davor hat ihn an seinem Anfang angehalten, und hier geht nichts weiter. Schließen Sie dieses Dokument und machen Sie in einem neuen weiter.</translation>
    </message>
    <message>
        <source>Go on in a new document, which takes the item and its settings along.</source>
        <translation>Weiter geht es in einem neuen Dokument, mit Objekt und Einstellungen.</translation>
    </message>
    <message>
        <source>It lies in the folder “%1”, with the original.</source>
        <translation>Es liegt mit dem Original im Ordner „%1“.</translation>
    </message>
    <message>
        <source>For practice: other Macs do not accept it.</source>
        <translation>Zum Üben: Andere Macs erkennen es nicht an.</translation>
    </message>
</context>
<context>
    <name>sealwright::PassphraseForm</name>
    <message>
        <source>New &amp;passphrase</source>
        <translation>Neue &amp;Passphrase</translation>
    </message>
    <message>
        <source>Once &amp;more</source>
        <translation>Noch &amp;einmal</translation>
    </message>
    <message>
        <source>&amp;Set Passphrase</source>
        <translation>Passphrase &amp;festlegen</translation>
    </message>
    <message>
        <source>Enter a passphrase. Nobody can open the keychain without it.</source>
        <translation>Geben Sie eine Passphrase ein. Ohne sie kann niemand den Schlüsselbund öffnen.</translation>
    </message>
    <message>
        <source>The two are not the same yet.</source>
        <translation>Die beiden sind noch nicht gleich.</translation>
    </message>
</context>
<context>
    <name>sealwright::PasswordForm</name>
    <message>
        <source>&amp;Apple ID</source>
        <translation>&amp;Apple-ID</translation>
    </message>
    <message>
        <source>App-specific pass&amp;word</source>
        <translation>Anwendungsspezifisches Pass&amp;wort</translation>
    </message>
    <message>
        <source>Keep &amp;under the name</source>
        <translation>A&amp;blegen unter dem Namen</translation>
    </message>
    <message>
        <source>notary</source>
        <translation>notary</translation>
    </message>
    <message>
        <source>Add &amp;Password</source>
        <translation>Passwort &amp;hinzufügen</translation>
    </message>
    <message>
        <source>Enter the password.</source>
        <translation>Geben Sie das Passwort ein.</translation>
    </message>
</context>
<context>
    <name>sealwright::PracticeForm</name>
    <message>
        <source>Your &amp;name or company</source>
        <translation>Ihr &amp;Name oder Ihre Firma</translation>
    </message>
    <message>
        <source>Example Corp</source>
        <translation>Beispiel GmbH</translation>
    </message>
    <message>
        <source>Practice</source>
        <translation>Practice</translation>
    </message>
    <message>
        <source>Set Up for &amp;Practice</source>
        <translation>Zum Üben &amp;einrichten</translation>
    </message>
    <message>
        <source>Make &amp;Identity</source>
        <translation>&amp;Identität erstellen</translation>
    </message>
    <message>
        <source>Enter a name for the identity.</source>
        <translation>Geben Sie einen Namen für die Identität ein.</translation>
    </message>
    <message>
        <source>The name cannot have a quotation mark.</source>
        <translation>Der Name darf kein Anführungszeichen haben.</translation>
    </message>
</context>
<context>
    <name>sealwright::PreferencesWindow</name>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
    <message>
        <source>Settings</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Signing</source>
        <translation>Signieren</translation>
    </message>
    <message>
        <source>Notarization</source>
        <translation>Beglaubigung</translation>
    </message>
    <message>
        <source>Log</source>
        <translation>Protokoll</translation>
    </message>
    <message>
        <source>Tools</source>
        <translation>Werkzeuge</translation>
    </message>
    <message>
        <source>&amp;Replace signatures that are there</source>
        <translation>Vorhandene Signaturen e&amp;rsetzen</translation>
    </message>
    <message>
        <source>Without it, codesign refuses code that is signed already.</source>
        <translation>Sonst lehnt codesign Code ab, der schon signiert ist.</translation>
    </message>
    <message>
        <source>Have codesign sign &amp;nested code too</source>
        <translation>codesign auch enthalte&amp;nen Code signieren lassen</translation>
    </message>
    <message>
        <source>Rarely needed: nested code is signed piece by piece in any case.</source>
        <translation>Selten nötig: Enthaltener Code wird ohnehin Stück für Stück signiert.</translation>
    </message>
    <message>
        <source>&amp;Verify after signing</source>
        <translation>Nach dem Signieren &amp;prüfen</translation>
    </message>
    <message>
        <source>spctl assesses what was signed, if it is no disk image. Its answer is for the log file; the upload goes on.</source>
        <translation>spctl beurteilt, was signiert wurde, wenn es kein Image ist. Die Antwort steht in der Protokolldatei; das Hochladen geht weiter.</translation>
    </message>
    <message>
        <source>Notary &amp;service</source>
        <translation>Beglaubigungs&amp;dienst</translation>
    </message>
    <message>
        <source>Which service the tools ask. The one of this machine is for practice: nobody else accepts what it notarizes.</source>
        <translation>Welchen Dienst die Werkzeuge fragen. Der dieses Rechners ist zum Üben: Was er beglaubigt, gilt sonst nirgends.</translation>
    </message>
    <message>
        <source>Prefer the notary tool of &amp;Xcode</source>
        <translation>Das Werkzeug von &amp;Xcode vorziehen</translation>
    </message>
    <message>
        <source>Otherwise that of Transporter comes first. Takes effect at the next launch.</source>
        <translation>Sonst kommt das von Transporter zuerst. Gilt ab dem nächsten Start.</translation>
    </message>
    <message>
        <source>&amp;Ask for the verdict every</source>
        <translation>Nach dem Ergebnis fragen &amp;alle</translation>
    </message>
    <message>
        <source>From 20 to 300 seconds. A verdict usually takes several minutes.</source>
        <translation>Zwischen 20 und 300 Sekunden. Ein Ergebnis braucht meist einige Minuten.</translation>
    </message>
    <message>
        <source>&amp;Give up after</source>
        <translation>Auf&amp;geben nach</translation>
    </message>
    <message>
        <source>failures</source>
        <translation>Fehlern</translation>
    </message>
    <message>
        <source>Failures with code 239, which pass by themselves when the service is busy.</source>
        <translation>Fehler mit dem Code 239, die von selbst vergehen, wenn der Dienst beschäftigt ist.</translation>
    </message>
    <message>
        <source>Go on &amp;waiting by itself at launch</source>
        <translation>Beim Start von selbst &amp;weiter warten</translation>
    </message>
    <message>
        <source>For what an earlier launch has left. Otherwise the window says what still waits, and asks.</source>
        <translation>Für das, was ein früherer Start übrig gelassen hat. Sonst sagt das Fenster, was noch wartet, und fragt.</translation>
    </message>
    <message>
        <source>Notif&amp;y me while Sealwright is in front</source>
        <translation>Auch melden, wenn Sealwright &amp;vorn ist</translation>
    </message>
    <message>
        <source>Otherwise a verdict is announced only while you work in another program.</source>
        <translation>Sonst wird ein Ergebnis nur gemeldet, während Sie in einem anderen Programm arbeiten.</translation>
    </message>
    <message>
        <source>Keep a detailed &amp;log beside the item</source>
        <translation>Ausführliches &amp;Protokoll neben dem Objekt ablegen</translation>
    </message>
    <message>
        <source>“Submission Log.txt” has every line of the window and each tool&apos;s full report.</source>
        <translation>„Submission Log.txt“ enthält jede Zeile des Fensters und den ganzen Bericht jedes Werkzeugs.</translation>
    </message>
    <message>
        <source>Text si&amp;ze in the window</source>
        <translation>Schrift&amp;größe im Fenster</translation>
    </message>
    <message>
        <source>points</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>&amp;Folder of tools</source>
        <translation>&amp;Ordner der Werkzeuge</translation>
    </message>
    <message>
        <source>Holds tools at Apple&apos;s paths, such as usr/bin/codesign. Takes effect at the next launch.</source>
        <translation>Enthält Werkzeuge unter Apples Pfaden, etwa usr/bin/codesign. Gilt ab dem nächsten Start.</translation>
    </message>
    <message>
        <source>&amp;Pause after each tool</source>
        <translation>&amp;Pause nach jedem Werkzeug</translation>
    </message>
    <message>
        <source>0 is safe on this system. Counts for documents opened from now on.</source>
        <translation>0 ist auf diesem System sicher. Gilt für Dokumente, die von jetzt an geöffnet werden.</translation>
    </message>
    <message>
        <source>Announce the &amp;end of a run in the background</source>
        <translation>Das &amp;Ende eines Laufs im Hintergrund melden</translation>
    </message>
    <message>
        <source>While no window of Sealwright is active; a click leads to the document.</source>
        <translation>Während kein Fenster von Sealwright aktiv ist; ein Klick führt zum Dokument.</translation>
    </message>
    <message>
        <source>12 is as large as the rest of the window. Counts from the next line on.</source>
        <translation>12 ist so groß wie das übrige Fenster. Gilt ab der nächsten Zeile.</translation>
    </message>
</context>
<context>
    <name>sealwright::ProfileButton</name>
    <message>
        <source>Profile</source>
        <translation>Profil</translation>
    </message>
    <message>
        <source>Credentials, identity, entitlements and options under one name</source>
        <translation>Zugangsdaten, Identität, Berechtigungen und Optionen unter einem Namen</translation>
    </message>
    <message>
        <source>&amp;Save as Profile…</source>
        <translation>Als Profil &amp;sichern …</translation>
    </message>
    <message>
        <source>Show “%1” in &amp;Folder</source>
        <translation>„%1“ im &amp;Ordner zeigen</translation>
    </message>
    <message>
        <source>&amp;Remove “%1”</source>
        <translation>„%1“ &amp;entfernen</translation>
    </message>
    <message>
        <source>Save as Profile</source>
        <translation>Als Profil sichern</translation>
    </message>
    <message>
        <source>Keeps what this document is set to, without any secret. Name of the profile:</source>
        <translation>Sichert, worauf dieses Dokument eingestellt ist, ohne Geheimnisse. Name des Profils:</translation>
    </message>
</context>
<context>
    <name>Progress</name>
    <message>
        <source>%1 of %2 MB</source>
        <translation>%1 von %2 MB</translation>
    </message>
    <message>
        <source>%1 at %2 MB/s</source>
        <translation>%1 mit %2 MB/s</translation>
    </message>
    <message>
        <source>%1 of %2</source>
        <translation>%1 von %2</translation>
    </message>
    <message>
        <source>Next check in %1</source>
        <translation>Nächste Frage in %1</translation>
    </message>
    <message>
        <source>%1, %2</source>
        <translation>%1, %2</translation>
    </message>
    <message>
        <source>Such waits took about a minute lately.</source>
        <translation>Zuletzt dauerte das etwa eine Minute.</translation>
    </message>
    <message>
        <source>Such waits took about %1 minutes lately.</source>
        <translation>Zuletzt dauerte das etwa %1 Minuten.</translation>
    </message>
    <message>
        <source>Such waits took %1 to %2 minutes lately.</source>
        <translation>Zuletzt dauerte das %1 bis %2 Minuten.</translation>
    </message>
</context>
<context>
    <name>sealwright::ProtectionPage</name>
    <message>
        <source>The keychain is locked. Nothing can be signed or submitted before it is unlocked.</source>
        <translation>Der Schlüsselbund ist gesperrt. Bevor er entsperrt ist, kann nichts signiert oder eingereicht werden.</translation>
    </message>
    <message>
        <source>The keys lie unprotected: whoever can read your files can use them. A passphrase or the desktop&apos;s keyring protects them.</source>
        <translation>Die Schlüssel liegen ungeschützt: Wer Ihre Dateien lesen kann, kann sie benutzen. Eine Passphrase oder der Schlüsselbund der Arbeitsumgebung schützt sie.</translation>
    </message>
    <message>
        <source>The keys lie under a passphrase. The keychain is open until you lock it or log out.</source>
        <translation>Die Schlüssel liegen unter einer Passphrase. Der Schlüsselbund ist offen, bis Sie ihn sperren oder sich abmelden.</translation>
    </message>
    <message>
        <source>The keys lie under the desktop&apos;s keyring, and are open while that is.</source>
        <translation>Die Schlüssel liegen unter dem Schlüsselbund der Arbeitsumgebung und sind offen, solange er es ist.</translation>
    </message>
    <message>
        <source>State of the keychain</source>
        <translation>Zustand des Schlüsselbunds</translation>
    </message>
    <message>
        <source>L&amp;ock</source>
        <translation>&amp;Sperren</translation>
    </message>
    <message>
        <source>Use the Desktop&apos;s &amp;Keyring</source>
        <translation>&amp;Schlüsselbund der Arbeitsumgebung benutzen</translation>
    </message>
    <message>
        <source>&amp;Do Without the Keyring</source>
        <translation>&amp;Ohne ihn auskommen</translation>
    </message>
</context>
<context>
    <name>sealwright::ProviderNameSheet</name>
    <message>
        <source>Provider Short Name</source>
        <translation>Kurzname des Anbieters</translation>
    </message>
    <message>
        <source>Asking Apple for your development teams…</source>
        <translation>Ihre Entwicklungsteams werden bei Apple erfragt …</translation>
    </message>
    <message>
        <source>Development team</source>
        <translation>Entwicklungsteam</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>unsigned</source>
        <translation>unsigniert</translation>
    </message>
    <message>
        <source>signed as number %1</source>
        <translation>wird als Nummer %1 signiert</translation>
    </message>
    <message>
        <source>not signed: %1</source>
        <translation>nicht signiert: %1</translation>
    </message>
    <message>
        <source>Severity</source>
        <translation>Schwere</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Pfad</translation>
    </message>
    <message>
        <source>Architecture</source>
        <translation>Architektur</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Meldung</translation>
    </message>
    <message>
        <source>Link</source>
        <translation>Verweis</translation>
    </message>
    <message>
        <source>Application</source>
        <translation>App</translation>
    </message>
    <message>
        <source>Plug-in</source>
        <translation>Plug-in</translation>
    </message>
    <message>
        <source>Installer package</source>
        <translation>Installationspaket</translation>
    </message>
    <message>
        <source>Disk image</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>Item</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>version %1</source>
        <translation>Version %1</translation>
    </message>
    <message>
        <source>will be signed by %1 and uploaded as it is</source>
        <translation>wird von %1 signiert und so hochgeladen, wie es ist</translation>
    </message>
    <message>
        <source>will be signed by %1 and uploaded as a disk image</source>
        <translation>wird von %1 signiert und als Image hochgeladen</translation>
    </message>
    <message>
        <source>will be signed by %1 and uploaded as a zip archive</source>
        <translation>wird von %1 signiert und als Zip-Archiv hochgeladen</translation>
    </message>
    <message>
        <source>Waiting for the verdict</source>
        <translation>Wartet auf das Ergebnis</translation>
    </message>
    <message>
        <source>Notarized</source>
        <translation>Beglaubigt</translation>
    </message>
    <message>
        <source>%1 is notarized and stapled.</source>
        <translation>%1 ist beglaubigt, das Ticket angeheftet.</translation>
    </message>
    <message>
        <source>Signed</source>
        <translation>Signiert</translation>
    </message>
    <message>
        <source>%1 is signed.</source>
        <translation>%1 ist signiert.</translation>
    </message>
    <message>
        <source>Cancelled</source>
        <translation>Abgebrochen</translation>
    </message>
    <message>
        <source>Help: %1</source>
        <translation>Hilfe: %1</translation>
    </message>
    <message>
        <source>Next check at %1</source>
        <translation>Nächste Frage um %1</translation>
    </message>
    <message>
        <source>Checking now</source>
        <translation>Fragt gerade</translation>
    </message>
    <message>
        <source>1 check</source>
        <translation>1 Frage</translation>
    </message>
    <message>
        <source>%1 checks</source>
        <translation>%1 Fragen</translation>
    </message>
    <message>
        <source>, %1 failed</source>
        <translation>, %1 fehlgeschlagen</translation>
    </message>
    <message>
        <source>%1 and %2</source>
        <translation>%1 und %2</translation>
    </message>
    <message>
        <source>%1 more</source>
        <translation>%1 weitere</translation>
    </message>
    <message>
        <source>%1 still waits for its verdict.</source>
        <translation>%1 wartet noch auf sein Ergebnis.</translation>
    </message>
    <message>
        <source>%1 still wait for their verdict.</source>
        <translation>%1 warten noch auf ihr Ergebnis.</translation>
    </message>
    <message>
        <source>added</source>
        <translation>hinzugekommen</translation>
    </message>
    <message>
        <source>removed</source>
        <translation>entfallen</translation>
    </message>
    <message>
        <source>architectures</source>
        <translation>Architekturen</translation>
    </message>
    <message>
        <source>entitlements</source>
        <translation>Entitlements</translation>
    </message>
    <message>
        <source>oldest system</source>
        <translation>ältestes System</translation>
    </message>
    <message>
        <source>SDK</source>
        <translation>SDK</translation>
    </message>
    <message>
        <source>identifier</source>
        <translation>Kennung</translation>
    </message>
    <message>
        <source>version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>signature</source>
        <translation>Signatur</translation>
    </message>
    <message>
        <source>size in bytes</source>
        <translation>Größe in Bytes</translation>
    </message>
    <message>
        <source>none</source>
        <translation>keine</translation>
    </message>
    <message>
        <source>Changes since %1</source>
        <translation>Änderungen seit %1</translation>
    </message>
    <message>
        <source>The notary service has refused the item. Its report is in the log.</source>
        <translation>Der Beglaubigungsdienst hat das Objekt abgelehnt. Sein Bericht steht im Protokoll.</translation>
    </message>
    <message>
        <source>%1 (and %2 more, under Issues)</source>
        <translation>%1 (und %2 weitere unter „Mängel“)</translation>
    </message>
    <message>
        <source>will be signed in %1 places by %2 and uploaded as a disk image</source>
        <translation>wird an %1 Stellen von %2 signiert und als Image hochgeladen</translation>
    </message>
    <message>
        <source>will be signed in %1 places by %2 and uploaded as a zip archive</source>
        <translation>wird an %1 Stellen von %2 signiert und als Zip-Archiv hochgeladen</translation>
    </message>
    <message>
        <source>cannot be signed, since there is no Developer ID</source>
        <translation>kann nicht signiert werden, da es keine Developer ID gibt</translation>
    </message>
    <message>
        <source>%1, to practise</source>
        <translation>%1, zum Üben</translation>
    </message>
    <message>
        <source>volume “%1”</source>
        <translation>Volume „%1“</translation>
    </message>
</context>
<context>
    <name>sealwright::SettingsSection</name>
    <message>
        <source>seconds</source>
        <translation>Sekunden</translation>
    </message>
</context>
<context>
    <name>sealwright::SetupBanner</name>
    <message>
        <source>First steps</source>
        <translation>Erste Schritte</translation>
    </message>
    <message>
        <source>&lt;b&gt;Welcome.&lt;/b&gt; Sealwright needs a signing identity and a notary key.</source>
        <translation>&lt;b&gt;Willkommen.&lt;/b&gt; Sealwright braucht eine Identität und einen Schlüssel.</translation>
    </message>
    <message>
        <source>Practise on This Machine…</source>
        <translation>Auf diesem Rechner üben …</translation>
    </message>
    <message>
        <source>Use My Developer ID…</source>
        <translation>Meine Developer ID verwenden …</translation>
    </message>
    <message>
        <source>Not Now</source>
        <translation>Nicht jetzt</translation>
    </message>
    <message>
        <source>&lt;b&gt;Ready to practise.&lt;/b&gt; Drop an app, plug-in, package or disk image on this window. What is notarized so counts on this machine alone.</source>
        <translation>&lt;b&gt;Bereit zum Üben.&lt;/b&gt; Legen Sie App, Plug-in, Paket oder Image auf dieses Fenster. Was so beglaubigt wird, gilt nur auf diesem Rechner.</translation>
    </message>
    <message>
        <source>&lt;b&gt;Ready.&lt;/b&gt; Drop an app, plug-in, package or disk image on this window.</source>
        <translation>&lt;b&gt;Bereit.&lt;/b&gt; Legen Sie App, Plug-in, Paket oder Image auf dieses Fenster.</translation>
    </message>
</context>
<context>
    <name>sealwright::SetupDialog</name>
    <message>
        <source>What to set up</source>
        <translation>Was einzurichten ist</translation>
    </message>
    <message>
        <source>Set Up</source>
        <translation>Einrichten</translation>
    </message>
    <message>
        <source>Practise on This Machine</source>
        <translation>Auf diesem Rechner üben</translation>
    </message>
    <message>
        <source>My Developer ID</source>
        <translation>Meine Developer ID</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Makes a signing identity and a key of a notary service that runs on this machine. Nothing leaves it, no account is needed, and what you notarize is accepted here alone.</source>
        <translation>Erstellt eine Identität und einen Schlüssel für einen Beglaubigungsdienst, der auf diesem Rechner läuft. Nichts verlässt ihn, es braucht kein Konto, und was beglaubigt wird, gilt nur hier.</translation>
    </message>
    <message>
        <source>&lt;b&gt;1. Signing identity&lt;/b&gt;: a Developer ID certificate with its key</source>
        <translation>&lt;b&gt;1. Identität&lt;/b&gt;: ein Zertifikat „Developer ID“ mit seinem Schlüssel</translation>
    </message>
    <message>
        <source>&lt;b&gt;2. Key or password&lt;/b&gt; of the notary service: Apple&apos;s takes API keys only</source>
        <translation>&lt;b&gt;2. Schlüssel oder Passwort&lt;/b&gt; des Beglaubigungsdienstes: Apples Dienst nimmt nur API-Schlüssel an</translation>
    </message>
    <message>
        <source>Key or password</source>
        <translation>Schlüssel oder Passwort</translation>
    </message>
    <message>
        <source>API key</source>
        <translation>API-Schlüssel</translation>
    </message>
    <message>
        <source>App-specific password</source>
        <translation>Anwendungsspezifisches Passwort</translation>
    </message>
    <message>
        <source>None yet: the keychain has no valid Developer ID Application identity.</source>
        <translation>Noch keine: Im Schlüsselbund ist keine gültige Identität „Developer ID Application“.</translation>
    </message>
    <message>
        <source>“%1” is in the keychain.</source>
        <translation>„%1“ ist im Schlüsselbund.</translation>
    </message>
    <message>
        <source>All is set up. Start Sealwright anew when its runs have ended.</source>
        <translation>Alles ist eingerichtet. Starten Sie Sealwright neu, wenn seine Läufe zu Ende sind.</translation>
    </message>
    <message>
        <source>All is set up. Sealwright starts anew…</source>
        <translation>Alles ist eingerichtet. Sealwright startet neu …</translation>
    </message>
</context>
<context>
    <name>sealwright::SidePane</name>
    <message>
        <source>Steps and findings</source>
        <translation>Schritte und Befunde</translation>
    </message>
    <message>
        <source>Steps</source>
        <translation>Schritte</translation>
    </message>
    <message>
        <source>Examine</source>
        <translation>Untersuchen</translation>
    </message>
    <message>
        <source>Issues</source>
        <translation>Mängel</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Verlauf</translation>
    </message>
</context>
<context>
    <name>sealwright::SigningGroup</name>
    <message>
        <source>Signing and Upload</source>
        <translation>Signieren und Hochladen</translation>
    </message>
    <message>
        <source>Signing iden&amp;tity</source>
        <translation>Iden&amp;tität</translation>
    </message>
    <message>
        <source>Sign &amp;main item only</source>
        <translation>Nur die Ha&amp;uptdatei signieren</translation>
    </message>
    <message>
        <source>Leaves the code that an app or plug-in contains as it is signed now</source>
        <translation>Lässt Code, den eine App oder ein Plug-in enthält, so signiert, wie er ist</translation>
    </message>
    <message>
        <source>Account &gt; Set Up… adds one.</source>
        <translation>„Konto &gt; Einrichten …“ fügt eine hinzu.</translation>
    </message>
    <message>
        <source>&amp;Upload as a disk image</source>
        <translation>Als Ima&amp;ge hochladen</translation>
    </message>
    <message>
        <source>Staples a disk image for distribution, in place of the item itself</source>
        <translation>Heftet das Ticket an ein Image zum Verteilen statt an das Objekt selbst</translation>
    </message>
    <message>
        <source>Disk image options</source>
        <translation>Optionen für Images</translation>
    </message>
    <message>
        <source>Made by &amp;DropDMG with</source>
        <translation>E&amp;rstellt von DropDMG mit</translation>
    </message>
    <message>
        <source>Has DropDMG make the disk image to one of its configurations</source>
        <translation>Lässt DropDMG das Image nach einer seiner Konfigurationen erstellen</translation>
    </message>
</context>
<context>
    <name>sealwright::StepListModel</name>
    <message>
        <source>Began at %1</source>
        <translation>Begonnen um %1</translation>
    </message>
    <message>
        <source>Upload to this machine's service</source>
        <translation>Zum Dienst dieses Rechners hochladen</translation>
    </message>
    <message>
        <source>Wait for its result</source>
        <translation>Auf dessen Ergebnis warten</translation>
    </message>
</context>
<context>
    <name>sealwright::StepListView</name>
    <message>
        <source>Steps</source>
        <translation>Schritte</translation>
    </message>
    <message>
        <source>The steps of a run stand here while it goes on, and stay when it has ended.</source>
        <translation>Hier stehen die Schritte eines Laufs, solange er dauert und danach.</translation>
    </message>
</context>
<context>
    <name>sealwright::TabBar</name>
    <message>
        <source>Tabs</source>
        <translation>Tabs</translation>
    </message>
    <message>
        <source>Close Tab</source>
        <translation>Tab schließen</translation>
    </message>
</context>
<context>
    <name>sealwright::ToolFolderRow</name>
    <message>
        <source>There is no such folder. Sealwright would find no tools at the next launch.</source>
        <translation>Es gibt keinen solchen Ordner. Sealwright fände beim nächsten Start keine Werkzeuge.</translation>
    </message>
    <message>
        <source>This folder has no %1. Sealwright would not work with it.</source>
        <translation>In diesem Ordner fehlt %1. Sealwright würde damit nicht arbeiten.</translation>
    </message>
    <message>
        <source>Sealwright's own</source>
        <translation>Die von Sealwright</translation>
    </message>
    <message>
        <source>&amp;Choose…</source>
        <translation>Aus&amp;wählen …</translation>
    </message>
    <message>
        <source>Choose folder of tools</source>
        <translation>Ordner der Werkzeuge auswählen</translation>
    </message>
    <message>
        <source>Choose the folder of tools</source>
        <translation>Ordner der Werkzeuge auswählen</translation>
    </message>
</context>
<context>
    <name>sealwright::UnlockForm</name>
    <message>
        <source>&amp;Passphrase</source>
        <translation>&amp;Passphrase</translation>
    </message>
    <message>
        <source>&amp;Unlock</source>
        <translation>&amp;Entsperren</translation>
    </message>
    <message>
        <source>Enter the passphrase.</source>
        <translation>Geben Sie die Passphrase ein.</translation>
    </message>
</context>
<context>
    <name>sealwright::WaitingBanner</name>
    <message>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <source>Go On Waiting</source>
        <translation>Weiter warten</translation>
    </message>
    <message>
        <source>Not Now</source>
        <translation>Nicht jetzt</translation>
    </message>
</context>
<context>
    <name>WidgetWindow</name>
    <message>
        <source>Copy Path</source>
        <translation>Pfad kopieren</translation>
    </message>
    <message>
        <source>Nothing here shows folders. It lies at:
%1</source>
        <translation>Hier zeigt nichts einen Ordner. Es liegt unter:
%1</translation>
    </message>
    <message>
        <source>No File Manager</source>
        <translation>Kein Dateimanager</translation>
    </message>
    <message>
        <source>Save Log As</source>
        <translation>Protokoll sichern unter</translation>
    </message>
    <message>
        <source>The log is not saved</source>
        <translation>Das Protokoll ist nicht gesichert</translation>
    </message>
</context>
<context>
    <name>sealwright::filepanels::DesktopPanel</name>
    <message>
        <source>The desktop asks for the file in a window of its own.</source>
        <translation>Der Desktop fragt in einem eigenen Fenster nach der Datei.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>QFileDialog</name>
    <message>
        <source>Look in:</source>
        <translation>Suchen in:</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Go back</source>
        <translation>Gehe zurück</translation>
    </message>
    <message>
        <source>Forward</source>
        <translation>Vor</translation>
    </message>
    <message>
        <source>Go forward</source>
        <translation>Gehe vor</translation>
    </message>
    <message>
        <source>Parent Directory</source>
        <translation>Übergeordneter Ordner</translation>
    </message>
    <message>
        <source>Go to the parent directory</source>
        <translation>Gehe zum übergeordneten Ordner</translation>
    </message>
    <message>
        <source>Create New Folder</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <source>Create a New Folder</source>
        <translation>Legt einen neuen Ordner an</translation>
    </message>
    <message>
        <source>List View</source>
        <translation>Liste</translation>
    </message>
    <message>
        <source>Change to list view mode</source>
        <translation>Zeigt eine Liste</translation>
    </message>
    <message>
        <source>Detail View</source>
        <translation>Details</translation>
    </message>
    <message>
        <source>Change to detail view mode</source>
        <translation>Zeigt Details</translation>
    </message>
    <message>
        <source>Sidebar</source>
        <translation>Seitenleiste</translation>
    </message>
    <message>
        <source>List of places and bookmarks</source>
        <translation>Orte und Lesezeichen</translation>
    </message>
    <message>
        <source>Files</source>
        <translation>Dateien</translation>
    </message>
    <message>
        <source>File &amp;name:</source>
        <translation>Datei&amp;name:</translation>
    </message>
    <message>
        <source>Files of type:</source>
        <translation>Dateien des Typs:</translation>
    </message>
    <message>
        <source>&amp;Open</source>
        <translation>&amp;Öffnen</translation>
    </message>
    <message>
        <source>&amp;Save</source>
        <translation>&amp;Sichern</translation>
    </message>
    <message>
        <source>&amp;Choose</source>
        <translation>&amp;Auswählen</translation>
    </message>
    <message>
        <source>Directory:</source>
        <translation>Ordner:</translation>
    </message>
    <message>
        <source>All Files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Show &amp;hidden files</source>
        <translation>&amp;Versteckte Dateien zeigen</translation>
    </message>
    <message>
        <source>&amp;New Folder</source>
        <translation>&amp;Neuer Ordner</translation>
    </message>
    <message>
        <source>New Folder</source>
        <translation>Neuer Ordner</translation>
    </message>
    <message>
        <source>&amp;Rename</source>
        <translation>&amp;Umbenennen</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>Recent Places</source>
        <translation>Zuletzt besucht</translation>
    </message>
    <message>
        <source>%1 already exists.
Do you want to replace it?</source>
        <translation>%1 ist schon vorhanden.
Soll sie ersetzt werden?</translation>
    </message>
</context>
<context>
    <name>QFileSystemModel</name>
    <message>
        <source>Name</source>
        <translation>Name</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>Type</source>
        <translation>Art</translation>
    </message>
    <message>
        <source>Date Modified</source>
        <translation>Geändert</translation>
    </message>
    <message>
        <source>Computer</source>
        <translation>Computer</translation>
    </message>
</context>
<context>
    <name>QPlatformTheme</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>&amp;Yes</source>
        <translation>&amp;Ja</translation>
    </message>
    <message>
        <source>&amp;No</source>
        <translation>&amp;Nein</translation>
    </message>
</context>
<context>
    <name>QAbstractFileIconProvider</name>
    <message>
        <source>Folder</source>
        <comment>Match Windows Explorer</comment>
        <translation>Ordner</translation>
    </message>
</context>
</TS>

<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en_US" sourcelanguage="it_IT">
<context>
    <name>keys</name>
    <message>
        <source>Cerca negli appunti…</source>
        <translation>Search the clipboard…</translation>
    </message>
    <message>
        <source>Tutti</source>
        <translation>All</translation>
    </message>
    <message>
        <source>Testo</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>Immagini</source>
        <translation>Images</translation>
    </message>
    <message>
        <source>File##files</source>
        <translation>Files</translation>
    </message>
    <message>
        <source>Fissati</source>
        <translation>Pinned</translation>
    </message>
    <message>
        <source>⏎ incolla  ·  ⇧⏎ senza formato  ·  ⌥⏎ copia  ·  ⌘E modifica  ·  ⌘P fissa  ·  ⌘⌫ elimina  ·  ⌘1–9 rapida  ·  ⇥ filtro</source>
        <translation>⏎ paste  ·  ⇧⏎ unformatted  ·  Alt+⏎ copy  ·  Ctrl+E edit  ·  Ctrl+P pin  ·  Ctrl+⌫ delete  ·  Ctrl+1–9 quick  ·  ⇥ filter</translation>
    </message>
    <message>
        <source>%@ elementi</source>
        <translation>%@ items</translation>
    </message>
    <message>
        <source>%@ di %@</source>
        <translation>%@ of %@</translation>
    </message>
    <message>
        <source>Immagine %@×%@</source>
        <translation>Image %@×%@</translation>
    </message>
    <message>
        <source>%@ file: </source>
        <translation>%@ files: </translation>
    </message>
    <message>
        <source>%@ caratteri</source>
        <translation>%@ characters</translation>
    </message>
    <message>
        <source>adesso</source>
        <translation>now</translation>
    </message>
    <message>
        <source>Testo formattato</source>
        <translation>Formatted text</translation>
    </message>
    <message>
        <source>Immagine</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>immagine</source>
        <translation>image</translation>
    </message>
    <message>
        <source>%@×%@ px</source>
        <translation>%@×%@ px</translation>
    </message>
    <message>
        <source>testo riconosciuto</source>
        <translation>recognised text</translation>
    </message>
    <message>
        <source>lettura del testo…</source>
        <translation>reading the text…</translation>
    </message>
    <message>
        <source>1 riga</source>
        <translation>1 line</translation>
    </message>
    <message>
        <source>%@ righe</source>
        <translation>%@ lines</translation>
    </message>
    <message>
        <source>1 file</source>
        <translation>1 file</translation>
    </message>
    <message>
        <source>%@ file</source>
        <translation>%@ files</translation>
    </message>
    <message>
        <source>da %@</source>
        <translation>from %@</translation>
    </message>
    <message>
        <source>Al cursore di testo</source>
        <translation>At the text cursor</translation>
    </message>
    <message>
        <source>Al puntatore</source>
        <translation>At the pointer</translation>
    </message>
    <message>
        <source>Al centro dello schermo</source>
        <translation>At the centre of the screen</translation>
    </message>
    <message>
        <source>Modifica</source>
        <translation>Edit</translation>
    </message>
    <message>
        <source>Annulla##undo</source>
        <translation>Undo</translation>
    </message>
    <message>
        <source>Ripeti</source>
        <translation>Redo</translation>
    </message>
    <message>
        <source>Taglia</source>
        <translation>Cut</translation>
    </message>
    <message>
        <source>Copia</source>
        <translation>Copy</translation>
    </message>
    <message>
        <source>Incolla</source>
        <translation>Paste</translation>
    </message>
    <message>
        <source>Seleziona tutto</source>
        <translation>Select All</translation>
    </message>
    <message>
        <source>Svuota</source>
        <translation>Clear</translation>
    </message>
    <message>
        <source>Annulla</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Senza permesso, la scelta viene solo copiata negli appunti: poi premi ⌘V.</source>
        <translation>Without permission, what you choose is only copied to the clipboard: then press Ctrl+V.</translation>
    </message>
    <message>
        <source>Spazio</source>
        <translation>Space</translation>
    </message>
    <message>
        <source>↩</source>
        <translation>Enter</translation>
    </message>
    <message>
        <source>⇥</source>
        <translation>Tab</translation>
    </message>
    <message>
        <source>⌫</source>
        <translation>Backspace</translation>
    </message>
    <message>
        <source>⌦</source>
        <translation>Delete</translation>
    </message>
    <message>
        <source>⎋</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>←</source>
        <translation>←</translation>
    </message>
    <message>
        <source>→</source>
        <translation>→</translation>
    </message>
    <message>
        <source>↑</source>
        <translation>↑</translation>
    </message>
    <message>
        <source>↓</source>
        <translation>↓</translation>
    </message>
    <message>
        <source>↖</source>
        <translation>Home</translation>
    </message>
    <message>
        <source>↘</source>
        <translation>End</translation>
    </message>
    <message>
        <source>⇞</source>
        <translation>Page Up</translation>
    </message>
    <message>
        <source>⇟</source>
        <translation>Page Down</translation>
    </message>
    <message>
        <source>⌃</source>
        <translation>Super+</translation>
    </message>
    <message>
        <source>⌥</source>
        <translation>Alt+</translation>
    </message>
    <message>
        <source>⇧</source>
        <translation>Shift+</translation>
    </message>
    <message>
        <source>⌘</source>
        <translation>Ctrl+</translation>
    </message>
    <message>
        <source>⌃⌥</source>
        <translation>Super+Alt+</translation>
    </message>
    <message>
        <source>⌃⇧</source>
        <translation>Super+Shift+</translation>
    </message>
    <message>
        <source>⌃⌘</source>
        <translation>Super+Ctrl+</translation>
    </message>
    <message>
        <source>⌥⇧</source>
        <translation>Alt+Shift+</translation>
    </message>
    <message>
        <source>⌥⌘</source>
        <translation>Ctrl+Alt+</translation>
    </message>
    <message>
        <source>⇧⌘</source>
        <translation>Ctrl+Shift+</translation>
    </message>
    <message>
        <source>⌃⌥⇧</source>
        <translation>Super+Alt+Shift+</translation>
    </message>
    <message>
        <source>⌃⌥⌘</source>
        <translation>Super+Ctrl+Alt+</translation>
    </message>
    <message>
        <source>⌃⇧⌘</source>
        <translation>Super+Ctrl+Shift+</translation>
    </message>
    <message>
        <source>⌥⇧⌘</source>
        <translation>Ctrl+Alt+Shift+</translation>
    </message>
    <message>
        <source>⌃⌥⇧⌘</source>
        <translation>Super+Ctrl+Alt+Shift+</translation>
    </message>
    <message>
        <source>1 byte</source>
        <translation>1 byte</translation>
    </message>
    <message>
        <source>%@ byte</source>
        <translation>%@ bytes</translation>
    </message>
    <message>
        <source>Mostra la cronologia   %@</source>
        <translation>Show History   %@</translation>
    </message>
    <message>
        <source>Ancora niente: copia qualcosa</source>
        <translation>Nothing yet: copy something</translation>
    </message>
    <message>
        <source>Metti in pausa la registrazione</source>
        <translation>Pause Recording</translation>
    </message>
    <message>
        <source>Riprendi la registrazione</source>
        <translation>Resume Recording</translation>
    </message>
    <message>
        <source>Svuota la cronologia…</source>
        <translation>Clear History…</translation>
    </message>
    <message>
        <source>Esci da Norvane</source>
        <translation>Quit Norvane</translation>
    </message>
    <message>
        <source>Svuotare la cronologia?</source>
        <translation>Clear the history?</translation>
    </message>
    <message>
        <source>Gli elementi fissati restano. Non si può annullare.</source>
        <translation>Pinned items stay. This cannot be undone.</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menu</translation>
    </message>
    <message>
        <source>Cronologia</source>
        <translation>History</translation>
    </message>
    <message>
        <source>Filtro</source>
        <translation>Filter</translation>
    </message>
    <message>
        <source>Anteprima</source>
        <translation>Preview</translation>
    </message>
    <message>
        <source>MAIUSCOLO</source>
        <translation>UPPERCASE</translation>
    </message>
    <message>
        <source>minuscolo</source>
        <translation>lowercase</translation>
    </message>
    <message>
        <source>Iniziali Maiuscole</source>
        <translation>Capitalize Each Word</translation>
    </message>
    <message>
        <source>Frase con maiuscola iniziale</source>
        <translation>Sentence case</translation>
    </message>
    <message>
        <source>Togli spazi a inizio e fine riga</source>
        <translation>Trim spaces at line ends</translation>
    </message>
    <message>
        <source>Tutto su una riga</source>
        <translation>All on one line</translation>
    </message>
    <message>
        <source>Togli le righe vuote</source>
        <translation>Remove empty lines</translation>
    </message>
    <message>
        <source>camelCase</source>
        <translation>camelCase</translation>
    </message>
    <message>
        <source>snake_case</source>
        <translation>snake_case</translation>
    </message>
    <message>
        <source>kebab-case</source>
        <translation>kebab-case</translation>
    </message>
    <message>
        <source>Tra virgolette (stringa JSON)</source>
        <translation>In quotes (JSON string)</translation>
    </message>
    <message>
        <source>Codifica URL</source>
        <translation>URL encode</translation>
    </message>
    <message>
        <source>Decodifica URL</source>
        <translation>URL decode</translation>
    </message>
    <message>
        <source>Codifica Base64</source>
        <translation>Base64 encode</translation>
    </message>
    <message>
        <source>Decodifica Base64</source>
        <translation>Base64 decode</translation>
    </message>
</context>
</TS>

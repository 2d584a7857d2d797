<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="it_IT" sourcelanguage="it_IT">
<context>
    <name>keys</name>
    <message>
        <source>Cerca negli appunti…</source>
        <translation>Cerca negli appunti…</translation>
    </message>
    <message>
        <source>Tutti</source>
        <translation>Tutti</translation>
    </message>
    <message>
        <source>Testo</source>
        <translation>Testo</translation>
    </message>
    <message>
        <source>Immagini</source>
        <translation>Immagini</translation>
    </message>
    <message>
        <source>File##files</source>
        <translation>File</translation>
    </message>
    <message>
        <source>Fissati</source>
        <translation>Fissati</translation>
    </message>
    <message>
        <source>⏎ incolla  ·  ⇧⏎ senza formato  ·  ⌥⏎ copia  ·  ⌘E modifica  ·  ⌘P fissa  ·  ⌘⌫ elimina  ·  ⌘1–9 rapida  ·  ⇥ filtro</source>
        <translation>⏎ incolla  ·  ⇧⏎ senza formato  ·  Alt+⏎ copia  ·  Ctrl+E modifica  ·  Ctrl+P fissa  ·  Ctrl+⌫ elimina  ·  Ctrl+1–9 rapida  ·  ⇥ filtro</translation>
    </message>
    <message>
        <source>%@ elementi</source>
        <translation>%@ elementi</translation>
    </message>
    <message>
        <source>%@ di %@</source>
        <translation>%@ di %@</translation>
    </message>
    <message>
        <source>Immagine %@×%@</source>
        <translation>Immagine %@×%@</translation>
    </message>
    <message>
        <source>%@ file: </source>
        <translation>%@ file: </translation>
    </message>
    <message>
        <source>%@ caratteri</source>
        <translation>%@ caratteri</translation>
    </message>
    <message>
        <source>adesso</source>
        <translation>adesso</translation>
    </message>
    <message>
        <source>Testo formattato</source>
        <translation>Testo formattato</translation>
    </message>
    <message>
        <source>Immagine</source>
        <translation>Immagine</translation>
    </message>
    <message>
        <source>immagine</source>
        <translation>immagine</translation>
    </message>
    <message>
        <source>%@×%@ px</source>
        <translation>%@×%@ px</translation>
    </message>
    <message>
        <source>testo riconosciuto</source>
        <translation>testo riconosciuto</translation>
    </message>
    <message>
        <source>lettura del testo…</source>
        <translation>lettura del testo…</translation>
    </message>
    <message>
        <source>1 riga</source>
        <translation>1 riga</translation>
    </message>
    <message>
        <source>%@ righe</source>
        <translation>%@ righe</translation>
    </message>
    <message>
        <source>1 file</source>
        <translation>1 file</translation>
    </message>
    <message>
        <source>%@ file</source>
        <translation>%@ file</translation>
    </message>
    <message>
        <source>da %@</source>
        <translation>da %@</translation>
    </message>
    <message>
        <source>Al cursore di testo</source>
        <translation>Al cursore di testo</translation>
    </message>
    <message>
        <source>Al puntatore</source>
        <translation>Al puntatore</translation>
    </message>
    <message>
        <source>Al centro dello schermo</source>
        <translation>Al centro dello schermo</translation>
    </message>
    <message>
        <source>Modifica</source>
        <translation>Modifica</translation>
    </message>
    <message>
        <source>Annulla##undo</source>
        <translation>Annulla</translation>
    </message>
    <message>
        <source>Ripeti</source>
        <translation>Ripeti</translation>
    </message>
    <message>
        <source>Taglia</source>
        <translation>Taglia</translation>
    </message>
    <message>
        <source>Copia</source>
        <translation>Copia</translation>
    </message>
    <message>
        <source>Incolla</source>
        <translation>Incolla</translation>
    </message>
    <message>
        <source>Seleziona tutto</source>
        <translation>Seleziona tutto</translation>
    </message>
    <message>
        <source>Svuota</source>
        <translation>Svuota</translation>
    </message>
    <message>
        <source>Annulla</source>
        <translation>Annulla</translation>
    </message>
    <message>
        <source>Senza permesso, la scelta viene solo copiata negli appunti: poi premi ⌘V.</source>
        <translation>Senza permesso, la scelta viene solo copiata negli appunti: poi premi Ctrl+V.</translation>
    </message>
    <message>
        <source>Spazio</source>
        <translation>Spazio</translation>
    </message>
    <message>
        <source>↩</source>
        <translation>Invio</translation>
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
        <translation>Canc</translation>
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
        <translation>Inizio</translation>
    </message>
    <message>
        <source>↘</source>
        <translation>Fine</translation>
    </message>
    <message>
        <source>⇞</source>
        <translation>Pag su</translation>
    </message>
    <message>
        <source>⇟</source>
        <translation>Pag giù</translation>
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
        <translation>Maiusc+</translation>
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
        <translation>Super+Maiusc+</translation>
    </message>
    <message>
        <source>⌃⌘</source>
        <translation>Super+Ctrl+</translation>
    </message>
    <message>
        <source>⌥⇧</source>
        <translation>Alt+Maiusc+</translation>
    </message>
    <message>
        <source>⌥⌘</source>
        <translation>Ctrl+Alt+</translation>
    </message>
    <message>
        <source>⇧⌘</source>
        <translation>Ctrl+Maiusc+</translation>
    </message>
    <message>
        <source>⌃⌥⇧</source>
        <translation>Super+Alt+Maiusc+</translation>
    </message>
    <message>
        <source>⌃⌥⌘</source>
        <translation>Super+Ctrl+Alt+</translation>
    </message>
    <message>
        <source>⌃⇧⌘</source>
        <translation>Super+Ctrl+Maiusc+</translation>
    </message>
    <message>
        <source>⌥⇧⌘</source>
        <translation>Ctrl+Alt+Maiusc+</translation>
    </message>
    <message>
        <source>⌃⌥⇧⌘</source>
        <translation>Super+Ctrl+Alt+Maiusc+</translation>
    </message>
    <message>
        <source>1 byte</source>
        <translation>1 byte</translation>
    </message>
    <message>
        <source>%@ byte</source>
        <translation>%@ byte</translation>
    </message>
    <message>
        <source>Mostra la cronologia   %@</source>
        <translation>Mostra la cronologia   %@</translation>
    </message>
    <message>
        <source>Ancora niente: copia qualcosa</source>
        <translation>Ancora niente: copia qualcosa</translation>
    </message>
    <message>
        <source>Metti in pausa la registrazione</source>
        <translation>Metti in pausa la registrazione</translation>
    </message>
    <message>
        <source>Riprendi la registrazione</source>
        <translation>Riprendi la registrazione</translation>
    </message>
    <message>
        <source>Svuota la cronologia…</source>
        <translation>Svuota la cronologia…</translation>
    </message>
    <message>
        <source>Esci da Norvane</source>
        <translation>Esci da Norvane</translation>
    </message>
    <message>
        <source>Svuotare la cronologia?</source>
        <translation>Svuotare la cronologia?</translation>
    </message>
    <message>
        <source>Gli elementi fissati restano. Non si può annullare.</source>
        <translation>Gli elementi fissati restano. Non si può annullare.</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Menu</translation>
    </message>
    <message>
        <source>Cronologia</source>
        <translation>Cronologia</translation>
    </message>
    <message>
        <source>Filtro</source>
        <translation>Filtro</translation>
    </message>
    <message>
        <source>Anteprima</source>
        <translation>Anteprima</translation>
    </message>
    <message>
        <source>MAIUSCOLO</source>
        <translation>MAIUSCOLO</translation>
    </message>
    <message>
        <source>minuscolo</source>
        <translation>minuscolo</translation>
    </message>
    <message>
        <source>Iniziali Maiuscole</source>
        <translation>Iniziali Maiuscole</translation>
    </message>
    <message>
        <source>Frase con maiuscola iniziale</source>
        <translation>Frase con maiuscola iniziale</translation>
    </message>
    <message>
        <source>Togli spazi a inizio e fine riga</source>
        <translation>Togli spazi a inizio e fine riga</translation>
    </message>
    <message>
        <source>Tutto su una riga</source>
        <translation>Tutto su una riga</translation>
    </message>
    <message>
        <source>Togli le righe vuote</source>
        <translation>Togli le righe vuote</translation>
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
        <translation>Tra virgolette (stringa JSON)</translation>
    </message>
    <message>
        <source>Codifica URL</source>
        <translation>Codifica URL</translation>
    </message>
    <message>
        <source>Decodifica URL</source>
        <translation>Decodifica URL</translation>
    </message>
    <message>
        <source>Codifica Base64</source>
        <translation>Codifica Base64</translation>
    </message>
    <message>
        <source>Decodifica Base64</source>
        <translation>Decodifica Base64</translation>
    </message>
</context>
</TS>

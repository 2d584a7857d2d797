#pragma once

#include <QString>
#include <array>

// What the sample pictures say: sentences, labels and lines of code of our own.

inline constexpr std::array sentences{
    u"La riunione di martedì è spostata alle 15:30 in sala Verdi.",
    u"Perché il treno delle 8:12 è in ritardo di venti minuti?",
    u"Il pacco è arrivato ieri, ma nella scatola mancava la ricevuta.",
    u"Ho già scritto all'ufficio acquisti: rispondono entro giovedì.",
    u"Dopo la pioggia il sentiero era scivoloso e pieno di foglie.",
    u"Totale da pagare: € 1.249,90 entro il 30/11/2026.",
    u"Scrivi a marta.bianchi@example.org oppure chiama il 02 5550 1423.",
    u"Le finestre si chiudono da sole quando comincia a piovere.",
    u"Così com'è, il documento non può essere firmato da nessuno.",
    u"Aggiungi due cucchiai di zucchero e mescola finché è tiepido.",
    u"Nel giardino del museo c'è una fontana con sei pesci rossi.",
    u"La biblioteca apre alle nove e chiude alle diciotto e trenta.",
    u"Più tardi passiamo dal mercato a comprare pane, olio e limoni.",
    u"L'aggiornamento richiede 350 MB di spazio libero sul disco.",
    u"Ogni sera il gatto del vicino salta sul muretto e aspetta.",
    u"Vedi https://example.org/guida/primi-passi per i dettagli.",
    u"Quest'anno la vendemmia è cominciata con tre settimane d'anticipo.",
    u"Non è stato possibile salvare il file: la cartella è protetta.",
    u"Il prezzo scende del 15% se ordini almeno 20 pezzi.",
    u"Ricordati di spegnere le luci prima di uscire, per favore.",
    u"The meeting has moved to Tuesday at 3:30 pm in the blue room.",
    u"Please keep your ticket until the end of the journey.",
    u"We could not save your changes because the disk is full.",
    u"The quick delivery surprised everybody in the small village.",
    u"Send the signed form to office@example.com before Friday.",
    u"Her first novel sold more than 40,000 copies in a month.",
    u"Press the green button twice, then wait for the second beep.",
    u"Version 2.4.1 fixes a problem with very long file names.",
    u"Rain is expected in the north, with sunny spells later on.",
    u"Total due: $ 1,318.45 (tax included), payable by 12/05/2026.",
    u"Nobody knew why the clock in the hall had stopped at noon.",
    u"Read more at https://docs.example.com/setup/network today.",
    u"The garden gate squeaks, so visitors never arrive unnoticed.",
    u"You have 3 unread messages and 12 pending invitations.",
    u"A box of 24 candles costs less than two boxes of 12.",
    u"Choose a folder for the exported pictures and click Next.",
    u"Most of the bridge was rebuilt after the flood of 1966.",
    u"Don't forget to water the plants while we're away.",
    u"Search results are sorted by date, newest entries first.",
    u"Her train leaves from platform 9 at a quarter past seven.",
};

inline constexpr std::array labels{
    u"Salva",     u"Annulla",    u"Apri cartella", u"Modifica",   u"Elimina",   u"Impostazioni",
    u"Cerca",     u"Condividi",  u"Nuova scheda",  u"Stampa",     u"Esci",      u"Aggiungi utente",
    u"Copia",     u"Incolla",    u"Preferiti",     u"Cronologia", u"Avanti",    u"Indietro",
    u"Save as",   u"Cancel",     u"Open file",     u"Edit",       u"Delete",    u"Settings",
    u"Find next", u"Share link", u"New window",    u"Print",      u"Quit",      u"Add account",
    u"Downloads", u"Select all", u"Bookmarks",     u"Refresh",    u"Help",      u"Sign in",
    u"File",      u"View",       u"Tools",         u"Visualizza", u"Strumenti", u"Aiuto",
};

inline constexpr std::array codeLines{
    u"int main(int argc, char **argv)",
    u"const auto result = parse_line(buffer, 0);",
    u"if (count > max_items || !is_open)",
    u"for (size_t i = 0; i < rows.size(); ++i) {",
    u"return std::make_unique<Node>(name, value);",
    u"def read_config(path, default=None):",
    u"with open(path, encoding='utf-8') as handle:",
    u"self.total_price += item.price * quantity",
    u"import os, sys, json",
    u"SELECT id, name FROM users WHERE age >= 18;",
    u"\"version\": \"2.4.1\", \"private\": true,",
    u"let user_name = input.trim().to_lowercase();",
    u"// Keep the newest entry of each group.",
    u"# Legge la tabella e salta le righe vuote.",
    u"printf(\"%d of %d done\\n\", done, total);",
    u"export const limit = Math.min(100, size);",
    u"while (!queue.empty() && running) step();",
    u"throw std::runtime_error(\"no such key\");",
    u"git commit -m \"Fix the sorting of dates\"",
    u"sudo apt-get install libxml2-dev",
    u"cp -r ~/projects/site /var/www/html",
    u"static constexpr int kBufferSize = 4096;",
    u"}",
    u"else if (mode == 'r') {",
};

inline constexpr std::array places{u"Torino",   u"Bologna", u"Lecce",  u"Trieste", u"Pisa",
                                   u"Cagliari", u"Perugia", u"Leeds",  u"Dublin",  u"Brighton",
                                   u"Oxford",   u"Boston",  u"Denver", u"Austin",  u"Firenze",
                                   u"Ancona",   u"Bari",    u"Como",   u"York",    u"Cardiff"};

inline constexpr std::array names{u"Anna Ferri",    u"Luca Monti",  u"Giulia Neri",   u"Paolo Costa",
                                  u"Sara Lombardi", u"Emma Clarke", u"Tom Walker",    u"Olivia Stone",
                                  u"James Porter",  u"Ruth Baker",  u"Marco De Luca", u"Niccolò Riva"};

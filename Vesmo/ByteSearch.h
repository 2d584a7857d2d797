#pragma once

#include <QByteArrayView>

// The search for one string of bytes in long buffers. Any thread.
//
// Many places are tried at once, by the two bytes of the word that texts have least of: several times as fast
// as the C library's memmem, which looks at one byte after the other. A buffer on which that is of no use (a
// word of a hundred "a" among more of them) is handed to memmem, so that the time stays linear in any case.

// Where the word first begins in `text`, `from` on; -1 when nowhere. An empty word is at `from`.
[[nodiscard]] qsizetype indexOfBytes(QByteArrayView text, QByteArrayView word, qsizetype from = 0);

// How common in texts the rarest byte of a word is, from 0: of several words, the one with the least is
// likely in the fewest texts.
[[nodiscard]] int commonness(QByteArrayView word);

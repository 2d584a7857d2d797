#pragma once

#include "Norvane/store/Clip.h"

class Database;

// What is done with a history file that SQLite calls damaged: it is moved aside, never deleted, and as much
// as can be read of it goes into a new one. Rare, and done in one piece on the calling thread.

// Whether a write-ahead log lies beside a missing or empty file: SQLite would delete it unread.
[[nodiscard]] bool hasOrphanedLog(const QString &path);

// Renames the file and its side files to path + ".damaged-" + time. The new path; empty when it cannot be
// renamed.
[[nodiscard]] QString setAside(const QString &path);

// The clips whose rows can be read, newest first.
[[nodiscard]] ClipList salvagedClips(const QString &damagedPath);

// Writes the clips under their ids into a history without rows, with those of their formats that can still be
// read from the damaged file.
void restoreHistory(Database &db, const ClipList &clips, const QString &damagedPath);

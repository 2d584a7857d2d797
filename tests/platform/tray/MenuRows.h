#pragma once

#include "Platform/ClosureMenuItem.h"

#include <QStringList>

// Menu rows that note which of them was chosen.
class MenuRows {
protected:
    ClosureMenuItem row(const QString &title, const QString &key = {})
    {
        ClosureMenuItem made;
        made.title = title;
        made.key = key;
        made.handler = [this, title] { chosen << title; };
        return made;
    }

    static ClosureMenuItem separator()
    {
        ClosureMenuItem made;
        made.separator = true;
        return made;
    }

    QStringList chosen;
};

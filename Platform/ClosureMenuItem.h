#pragma once

#include <QImage>
#include <QString>
#include <functional>

// One row of a menu, as a value: what it shows, and the closure that it runs when it is chosen.
//
// A closure holds its controller weakly and its clip strongly; one whose controller is gone does nothing.
struct ClosureMenuItem {
    QString title; // shown literally: no character of it is a mnemonic or a column
    QString key; // bare key that chooses the row while the menu is open: a digit or a small letter; empty for
                 // none
    QString toolTip;
    QImage image;   // drawn as it is, in its own device pixel ratio
    QString symbol; // path of an SVG, drawn in the menu's text colour; where there is no image
    bool enabled = true;
    bool separator = false; // a line; nothing else counts then
    std::function<void()> handler;

    void run() const
    {
        if (handler)
            handler();
    }
};

#pragma once

#include "bench/recognition/SamplePage.h"

// Pictures of what programs show beside running text: tables, buttons, pages, lists, whole desktops.

struct Theme {
    QColor paper;
    QColor ink;
    QColor accent;
    QColor faint; // rules and frames
};

[[nodiscard]] Theme lightTheme(QRandomGenerator &random);
[[nodiscard]] Theme darkTheme(QRandomGenerator &random);

// One of six, which say nothing.
void drawIcon(SamplePage &page, const QRect &box, const QColor &color);

[[nodiscard]] Sample table(QRandomGenerator &random, bool wide);
[[nodiscard]] Sample buttons(QRandomGenerator &random, bool wide);
[[nodiscard]] Sample webPage(QRandomGenerator &random, bool wide);
[[nodiscard]] Sample selectedRows(QRandomGenerator &random, bool wide);
[[nodiscard]] Sample largeDesktop(QRandomGenerator &random, bool wide);

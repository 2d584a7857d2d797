#pragma once

#include <QImage>
#include <QSize>

// The soft shadow around a panel with round corners, in the three parts it is made of: all lines between the
// top and the bottom are alike.
//
// Each part is as wide as the panel with a margin on both sides; top and bottom reach beyond the panel by the
// same margin. Black of varying opacity (ARGB32 premultiplied); empty where the panel itself lies.
struct ShadowPicture {
    QImage top, line, bottom;
    int margin = 0; // pixels

    // Of a panel of this size in pixels; `scale` is what a point has in pixels, `radius` the corners' in
    // points. On a dark desktop a shadow must be stronger to be seen. Null parts for a panel too small to
    // have corners.
    [[nodiscard]] static ShadowPicture make(const QSize &panel, double radius, double scale, bool dark);
};

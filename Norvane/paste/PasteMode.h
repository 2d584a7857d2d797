#pragma once

#include "Norvane/app/TextTransform.h"

// How a chosen clip is delivered. Written and compared by its kind, PasteMode::plain; one that converts the
// text is made of its transform.
class PasteMode {
public:
    enum Kind {
        transform, // the plain text converted, then the paste stroke
        paste,     // every representation, then the paste stroke
        plain,     // the plain text only, then the paste stroke
        copy,      // every representation
        copyText,  // the plain text only
    };

    constexpr PasteMode(Kind plainKind) : ownKind(plainKind) {} // NOLINT: meant to convert
    constexpr PasteMode(TextTransform wanted) : ownKind(transform), ownTransform(wanted) {} // NOLINT

    [[nodiscard]] constexpr Kind kind() const { return ownKind; }
    // Of a mode of the kind `transform`.
    [[nodiscard]] constexpr TextTransform textTransform() const { return ownTransform; }

    constexpr bool operator==(const PasteMode &) const = default;

private:
    Kind ownKind;
    TextTransform ownTransform = TextTransform::upper;
};

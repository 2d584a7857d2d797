#pragma once

// How a chosen clip is delivered.
enum class PasteMode {
    paste,    // every representation, then the paste stroke
    plain,    // the plain text only, then the paste stroke
    copy,     // every representation
    copyText, // the plain text only
};

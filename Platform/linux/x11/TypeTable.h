#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

// Which target of the X selection stands for which pasteboard type, which targets are asked for and in which
// order. Pure: names in, names out.

// One name to ask for, and the type under which its bytes are kept.
struct ReadCandidate {
    QByteArray target;
    QString type;

    bool operator==(const ReadCandidate &) const = default;
};

// One form of an owner's content. The candidates are tried in turn until one is not refused.
struct ReadRequest {
    // In value order: what is asked for first survives an exceeded budget.
    enum class Kind { marker, files, copiedFiles, text, html, rtf, document, picture, layers, other };

    Kind kind = Kind::other;
    std::vector<ReadCandidate> candidates; // never empty
    size_t position = 0;                   // in the owner's list: where it is listed

    // Whether its bytes are a picture of any sort.
    [[nodiscard]] bool isPicture() const;

    bool operator==(const ReadRequest &) const = default;
};

// What to read of an owner's list of targets, in value order. Targets that are not in it count as not
// offered: services of the protocol, conversions with side effects, twins of a text and derived pictures.
struct ReadPlan {
    std::vector<ReadRequest> requests;
    bool concealed = false; // a password store's copy: nothing of it is read

    [[nodiscard]] bool offers(ReadRequest::Kind kind) const;
};

// The longest target name that is taken over; longer ones carry data in the name. LibreOffice describes its
// documents so, address included, which are worth nothing to Calc without.
inline constexpr qsizetype maxTargetNameLength = 256;
inline constexpr qsizetype maxDescriptorLength = 4096;

[[nodiscard]] ReadPlan planFor(const std::vector<QByteArray> &targets);

// Whether converting a target is forbidden: it has side effects for its owner (DELETE, a link into its
// document), gives a pointer of its process, or belongs to the protocol.
[[nodiscard]] bool isNeverConverted(const QByteArray &target);

// The character set of a "text/plain;charset=…" target, in lower case; absent for any other target.
[[nodiscard]] std::optional<QByteArray> charsetOf(const QByteArray &target);

// Whether a target stands for a text, styled text, a picture or files in a known way; any other is its
// owner's.
[[nodiscard]] bool hasFixedMeaning(const QByteArray &target);

// Whether a target says of a list of files if they are to be copied or moved.
[[nodiscard]] bool isCutSelection(const QByteArray &target);

// Whether the answer to such a target says "move".
[[nodiscard]] bool saysCut(const QByteArray &target, const QByteArray &bytes);

// The targets under which a type other than text and file URLs is served, the main one first; its own name
// when the type has no fixed meaning. Empty when the type must not be served.
[[nodiscard]] std::vector<QByteArray> targetsOf(const QString &type);

// The name that marks a copy as a password.
inline constexpr char passwordHintTarget[] = "x-kde-passwordManagerHint";

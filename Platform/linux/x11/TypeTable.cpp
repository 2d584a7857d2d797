#include "Platform/linux/x11/TypeTable.h"

#include "Platform/Pasteboard.h"

#include <QUtf8StringView>
#include <algorithm>
#include <array>
#include <map>

namespace {

using Kind = ReadRequest::Kind;

// Conversions that change something at the owner, or give what is worthless outside of it.
constexpr std::array neverConverted = {"GTK_TEXT_BUFFER_CONTENTS", "application/x-gtk-text-buffer-rich-text"};
constexpr std::array neverConvertedParts = {"x-openoffice-link", "x-libreoffice-internal-id-"};

// LibreOffice's document, and what says which program's it is. That stands in the parameters of the target's
// name, beside the document's address; without it Calc takes no document, only the values of its cells.
constexpr char officeDocument[] = "x-openoffice-embed-source-xml";
constexpr char officeDescriptor[] = "x-openoffice-objectdescriptor-xml";

// Whether files are to be moved or copied, best first: the last says no more than that. pcmanfm lets go of
// the selection when it is asked, which its reader has to undo.
constexpr std::array cutSelections = {"x-special/gnome-copied-files", "x-special/mate-copied-files",
                                      "application/x-kde-cutselection"};

struct NamedType {
    const char *target;
    const char16_t *type;
};

constexpr std::array richTextTargets = {"text/rtf", "application/rtf", "text/richtext"};
constexpr std::array<NamedType, 4> pictureTypes = {{{"image/png", PasteboardType::png},
                                                    {"image/jpeg", PasteboardType::jpeg},
                                                    {"image/heic", PasteboardType::heic},
                                                    {"image/tiff", PasteboardType::tiff}}};

// Encodings of one picture, best first. Any other raster picture comes after these.
constexpr std::array pictureOrder = {"image/png",
                                     "image/jpeg",
                                     "image/heic",
                                     "image/webp",
                                     "image/tiff",
                                     "image/bmp",
                                     "image/x-bmp",
                                     "image/x-MS-bmp",
                                     "image/jpg",
                                     "image/x-png",
                                     "application/x-qt-image"};

// Pictures that are no re-encoding of another one: an animation, vectors, layers.
constexpr std::array originalPictures = {"image/gif", "image/svg+xml", "image/svg", "image/x-xcf"};

// Pictures of a text document.
constexpr std::array documentPreviews = {"x-openoffice-bitmap", "x-openoffice-gdimetafile",
                                         "x-openoffice-emf", "x-openoffice-wmf"};

template <typename Names>
bool isOneOf(const QByteArray &name, const Names &names)
{
    return std::any_of(names.begin(), names.end(), [&](const char *each) { return name == each; });
}

template <typename Names>
bool hasPartOf(const QByteArray &name, const Names &parts)
{
    return std::any_of(parts.begin(), parts.end(), [&](const char *part) { return name.contains(part); });
}

bool isCapitals(const QByteArray &name)
{
    return std::none_of(name.begin(), name.end(),
                        [](char c) { return (c >= 'a' && c <= 'z') || c == '/' || c == '.'; });
}

bool isMarker(const QByteArray &name)
{
    return name.startsWith("org.nspasteboard.") || name.endsWith("TransientPasteboardType");
}

// The place of a target among the texts, best first; absent for what is no text.
std::optional<int> textRank(const QByteArray &target)
{
    if (target == "UTF8_STRING")
        return 0;
    if (const auto charset = charsetOf(target))
        return *charset == "utf-8" || *charset == "utf8" ? 1 : 5;
    if (target == "STRING")
        return 2;
    if (target == "TEXT")
        return 3;
    if (target == "text/plain")
        return 4;
    return std::nullopt;
}

std::optional<int> pictureRank(const QByteArray &target)
{
    if (isOneOf(target, originalPictures))
        return std::nullopt;
    const auto known = std::find_if(pictureOrder.begin(), pictureOrder.end(),
                                    [&](const char *name) { return target == name; });
    if (known != pictureOrder.end() || target.startsWith("image/"))
        return static_cast<int>(known - pictureOrder.begin());
    return std::nullopt;
}

QString typeOf(const QByteArray &target)
{
    for (const NamedType &each : pictureTypes) {
        if (target == each.target)
            return QStringView(each.type).toString();
    }
    if (target == "image/gif")
        return QStringView(PasteboardType::gif).toString();
    return QString::fromUtf8(target);
}

Kind kindOfSingle(const QByteArray &target)
{
    if (isMarker(target))
        return Kind::marker;
    if (target == "text/uri-list")
        return Kind::files;
    if (target == "text/html")
        return Kind::html;
    if (target.contains(officeDocument) || target.contains(officeDescriptor))
        return Kind::document;
    if (target == "image/gif")
        return Kind::picture;
    return target == "image/x-xcf" ? Kind::layers : Kind::other;
}

// Sorts the targets of an owner's list into requests.
class Planner {
public:
    void add(const QByteArray &target, size_t position)
    {
        if (target == passwordHintTarget)
            addSingle(Kind::marker, QStringView(PasteboardType::concealed).toString(), target, position);
        else if (isNeverConverted(target))
            return;
        else if (const auto text = textRank(target))
            addRanked(texts, *text, QStringView(PasteboardType::plainText).toString(), target, position);
        else if (isOneOf(target, richTextTargets))
            addRanked(richTexts, rankIn(richTextTargets, target), QStringView(PasteboardType::rtf).toString(),
                      target, position);
        else if (isCutSelection(target))
            addRanked(cutLists, rankIn(cutSelections, target), typeOf(target), target, position);
        else if (const auto picture = pictureRank(target))
            addRanked(pictures, *picture, typeOf(target), target, position);
        else if (target == "text/html")
            addSingle(Kind::html, QStringView(PasteboardType::html).toString(), target, position);
        else
            addSingle(kindOfSingle(target), typeOf(target), target, position);
    }

    ReadPlan plan()
    {
        ReadPlan plan{std::move(singles), false};
        addGroup(plan, Kind::copiedFiles, cutLists);
        addGroup(plan, Kind::text, texts);
        addGroup(plan, Kind::rtf, richTexts);
        addGroup(plan, Kind::picture, pictures);
        std::stable_sort(plan.requests.begin(), plan.requests.end(), [](const auto &a, const auto &b) {
            return a.kind != b.kind ? a.kind < b.kind : a.position < b.position;
        });
        return plan;
    }

private:
    struct Place {
        ReadCandidate candidate;
        size_t position;
    };
    using Group = std::multimap<int, Place>;

    template <typename Names>
    static int rankIn(const Names &names, const QByteArray &target)
    {
        return static_cast<int>(std::find(names.begin(), names.end(), target) - names.begin());
    }

    static void addRanked(Group &group, int rank, const QString &type, const QByteArray &target,
                          size_t position)
    {
        group.emplace(rank, Place{{target, type}, position});
    }

    void addSingle(Kind kind, const QString &type, const QByteArray &target, size_t position)
    {
        singles.push_back({kind, {{target, type}}, position});
    }

    static void addGroup(ReadPlan &plan, Kind kind, const Group &group)
    {
        if (group.empty())
            return;
        ReadRequest request{kind, {}, group.begin()->second.position};
        for (const auto &[rank, place] : group) {
            request.candidates.push_back(place.candidate);
            request.position = std::min(request.position, place.position);
        }
        plan.requests.push_back(std::move(request));
    }

    std::vector<ReadRequest> singles;
    Group cutLists, texts, richTexts, pictures;
};

} // namespace

bool ReadRequest::isPicture() const
{
    return kind == Kind::picture || kind == Kind::layers || candidates.front().target.startsWith("image/");
}

bool ReadPlan::offers(ReadRequest::Kind kind) const
{
    return std::any_of(requests.begin(), requests.end(), [&](const auto &each) { return each.kind == kind; });
}

bool isNeverConverted(const QByteArray &target)
{
    const auto longest = target.contains(officeDescriptor) ? maxDescriptorLength : maxTargetNameLength;
    if (target.isEmpty() || target.size() > longest || !QUtf8StringView(target).isValidUtf8())
        return true;
    if (target == "UTF8_STRING" || target == "STRING" || target == "TEXT")
        return false;
    // Names in capitals are the protocol's own: DELETE, MULTIPLE, INCR, or facts of the owner (HOSTNAME,
    // LENGTH, PIXMAP).
    return isCapitals(target) || isOneOf(target, neverConverted) || hasPartOf(target, neverConvertedParts);
}

bool hasFixedMeaning(const QByteArray &target)
{
    return textRank(target) || pictureRank(target) || isOneOf(target, richTextTargets) ||
           isOneOf(target, originalPictures) || isCutSelection(target) || target == "text/html" ||
           target == "text/uri-list";
}

bool isCutSelection(const QByteArray &target)
{
    return isOneOf(target, cutSelections);
}

bool saysCut(const QByteArray &target, const QByteArray &bytes)
{
    return target.startsWith("x-special/") ? bytes == "cut" || bytes.startsWith("cut\n")
                                           : bytes.startsWith('1');
}

std::optional<QByteArray> charsetOf(const QByteArray &target)
{
    const QByteArray name = target.toLower();
    if (!name.startsWith("text/plain;"))
        return std::nullopt;
    for (const QByteArray &parameter : name.split(';')) {
        QByteArray value = parameter.trimmed();
        if (!value.startsWith("charset="))
            continue;
        value = value.sliced(8);
        return value.replace('"', "");
    }
    return std::nullopt;
}

ReadPlan planFor(const std::vector<QByteArray> &targets)
{
    const bool concealed = std::find(targets.begin(), targets.end(), passwordHintTarget) != targets.end();
    const auto has = [&](auto matches) { return std::any_of(targets.begin(), targets.end(), matches); };
    const bool styled =
        has([](const QByteArray &each) { return textRank(each).has_value(); }) &&
        has([](const QByteArray &each) { return each == "text/html" || isOneOf(each, richTextTargets); });
    Planner planner;
    std::vector<QByteArray> seen;
    for (size_t position = 0; position < targets.size(); ++position) {
        const QByteArray &target = targets[position];
        const bool preview = styled && hasPartOf(target, documentPreviews);
        if (preview || std::find(seen.begin(), seen.end(), target) != seen.end())
            continue;
        seen.push_back(target);
        planner.add(target, position);
    }
    ReadPlan plan = planner.plan();
    plan.concealed = concealed;
    return plan;
}

std::vector<QByteArray> targetsOf(const QString &type)
{
    if (type == PasteboardType::rtf)
        return {richTextTargets.begin(), richTextTargets.end()};
    if (type == PasteboardType::html)
        return {"text/html"};
    if (type == PasteboardType::gif)
        return {"image/gif"};
    if (type == PasteboardType::concealed)
        return {passwordHintTarget};
    for (const NamedType &each : pictureTypes) {
        if (type == each.type)
            return {each.target};
    }
    const QByteArray name = type.toUtf8();
    if (isNeverConverted(name) || isCutSelection(name)) // rebuilt from the files: what was cut is cut once
        return {};
    return {name};
}

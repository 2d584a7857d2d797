#include "Platform/linux/x11/ServedContent.h"

#include "Platform/linux/x11/FileList.h"
#include "Platform/linux/x11/TextEncoding.h"
#include "Platform/linux/x11/TypeTable.h"

#include <QSet>
#include <algorithm>

namespace {

// Collects targets; the first of a name stays.
class Collector {
public:
    Collector(const std::vector<PasteboardItem> &from, const std::vector<ServedTarget> &given)
        : items(from), originals(given)
    {
    }

    void addAll()
    {
        for (const PasteboardItem &item : items) {
            for (const PasteboardRepresentation &each : item.representations) {
                if (!each.data)
                    continue;
                if (each.type == PasteboardType::plainText)
                    addText();
                else if (each.type == PasteboardType::fileURL || isCutSelection(each.type.toUtf8()))
                    addFiles();
                else
                    addForm(each);
            }
        }
    }

    void addText()
    {
        if (textAdded)
            return;
        textAdded = true;
        if (const auto text = joinedText(items))
            addTextTargets(*text);
    }

    std::vector<ServedTarget> targets;

private:
    void add(const QByteArray &target, const QByteArray &type, const QByteArray &bytes, bool latin1 = false)
    {
        if (names.contains(target))
            return;
        names.insert(target);
        const auto original = std::find_if(originals.begin(), originals.end(),
                                           [&](const ServedTarget &each) { return each.target == target; });
        targets.push_back(original != originals.end() ? *original
                                                      : ServedTarget{target, type, bytes, latin1});
    }

    // What the program that cut or copied these files said of that; the files alone mean a copy.
    [[nodiscard]] QByteArray cutSelection(const std::vector<QByteArray> &addresses) const
    {
        QByteArray list = copiedFilesList(addresses);
        const auto given = std::find_if(originals.begin(), originals.end(),
                                        [](const ServedTarget &each) { return isCutSelection(each.target); });
        if (given == originals.end())
            return list;
        if (given->target.startsWith("x-special/"))
            return given->bytes;
        return saysCut(given->target, given->bytes) ? list.replace(0, 4, "cut") : list;
    }

    void addTextTargets(const QByteArray &text)
    {
        add("UTF8_STRING", "UTF8_STRING", text);
        add("text/plain;charset=utf-8", "text/plain;charset=utf-8", text);
        add("text/plain", "text/plain", text);
        add("TEXT", "UTF8_STRING", text);
        if (fitsLatin1(text))
            add("STRING", "STRING", text, true);
        for (const ServedTarget &each : originals) {
            if (each.target == "STRING" || charsetOf(each.target))
                add(each.target, each.type, each.bytes);
        }
    }

    void addForm(const PasteboardRepresentation &form)
    {
        for (const QByteArray &target : targetsOf(form.type))
            add(target, target, target == passwordHintTarget && form.data->isEmpty() ? "secret" : *form.data);
    }

    void addFiles()
    {
        if (filesAdded)
            return;
        filesAdded = true;
        std::vector<QByteArray> addresses;
        std::optional<QByteArray> wholeList;
        for (const PasteboardItem &item : items) {
            if (const auto data = item.data(PasteboardType::fileURL)) {
                const auto found = addressesOfUriList(*data); // one, unless it was tampered with
                addresses.insert(addresses.end(), found.begin(), found.end());
            }
            if (!wholeList)
                wholeList = item.data(u"text/uri-list");
        }
        std::erase_if(addresses, [](const QByteArray &each) { return !isFileAddress(each); });
        if (addresses.empty())
            return;
        const QByteArray list = cutSelection(addresses);
        add("text/uri-list", "text/uri-list", wholeList.value_or(uriList(addresses)));
        add("x-special/gnome-copied-files", "x-special/gnome-copied-files", list);
        add("x-special/mate-copied-files", "x-special/mate-copied-files", list);
        add("application/x-kde-cutselection", "application/x-kde-cutselection",
            saysCut("x-special/gnome-copied-files", list) ? "1" : "0");
        if (!joinedText(items))
            addTextTargets(pathList(addresses));
    }

    const std::vector<PasteboardItem> &items;
    const std::vector<ServedTarget> &originals;
    QSet<QByteArray> names;
    bool textAdded = false;
    bool filesAdded = false;
};

} // namespace

void ServedTarget::convert()
{
    if (std::exchange(latin1, false))
        bytes = latin1FromUtf8(bytes);
}

std::optional<QByteArray> joinedText(const std::vector<PasteboardItem> &items)
{
    std::optional<QByteArray> joined;
    for (const PasteboardItem &item : items) {
        const auto text = item.data(PasteboardType::plainText);
        if (!text)
            continue;
        if (joined)
            *joined += '\n' + *text;
        else
            joined = text;
    }
    return joined;
}

std::vector<ServedTarget> servedTargets(const std::vector<PasteboardItem> &items,
                                        const std::vector<ServedTarget> &originals)
{
    Collector collector(items, originals);
    collector.addAll();
    return std::move(collector.targets);
}

std::vector<ServedTarget> servedTexts(const std::vector<PasteboardItem> &items)
{
    const std::vector<ServedTarget> none;
    Collector collector(items, none);
    collector.addText();
    if (collector.targets.empty()) // files: their paths
        collector.addAll();
    std::erase_if(collector.targets, [](const ServedTarget &each) {
        return each.type != "UTF8_STRING" && each.type != "STRING" && !each.target.startsWith("text/plain");
    });
    return std::move(collector.targets);
}

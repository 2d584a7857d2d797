#include "Platform/linux/x11/CopiedItems.h"

#include "Platform/linux/x11/FileList.h"
#include "Platform/linux/x11/TextEncoding.h"

#include <algorithm>
#include <array>
#include <map>

namespace {

constexpr std::array knownPictures = {PasteboardType::png, PasteboardType::tiff, PasteboardType::jpeg,
                                      PasteboardType::heic, PasteboardType::gif};

bool isKnownPicture(const QString &type)
{
    return std::any_of(knownPictures.begin(), knownPictures.end(),
                       [&](const char16_t *each) { return type == each; });
}

QString fileURLType()
{
    return QStringView(PasteboardType::fileURL).toString();
}

PasteboardRepresentation representationOf(const ReadRequest &request, const ReadOutcome &outcome)
{
    const bool fetched = outcome.status == ReadOutcome::Status::fetched;
    return {request.candidates[outcome.candidate].type,
            fetched ? std::optional(outcome.bytes) : std::nullopt};
}

} // namespace

std::optional<QByteArray> storedBytes(const ReadRequest &request, const ReadCandidate &candidate,
                                      const QByteArray &bytes)
{
    if (request.kind != ReadRequest::Kind::text || candidate.target == "UTF8_STRING")
        return bytes;
    if (const auto charset = charsetOf(candidate.target))
        return utf8FromCharset(bytes, *charset);
    return utf8FromUnlabelled(bytes);
}

namespace {

// A copy of an empty text and nothing else: how password stores and others empty the clipboard.
bool isEmptied(const ReadPlan &plan, const std::vector<ReadOutcome> &outcomes)
{
    using Status = ReadOutcome::Status;
    bool emptyText = false;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        if (outcomes[i].status == Status::refused)
            continue;
        if (outcomes[i].status != Status::fetched || !outcomes[i].bytes.isEmpty())
            return false;
        emptyText = emptyText || plan.requests[i].kind == ReadRequest::Kind::text;
    }
    return emptyText;
}

} // namespace

std::vector<PasteboardItem> itemsFrom(const ReadPlan &plan, const std::vector<ReadOutcome> &outcomes)
{
    if (isEmptied(plan, outcomes))
        return {};
    std::multimap<size_t, PasteboardRepresentation> first; // by their places in the owner's list
    std::vector<QByteArray> files;
    for (size_t i = 0; i < plan.requests.size(); ++i) {
        const ReadRequest &request = plan.requests[i];
        const ReadOutcome &outcome = outcomes[i];
        if (outcome.status == ReadOutcome::Status::refused)
            continue;
        if (request.kind != ReadRequest::Kind::files || outcome.status != ReadOutcome::Status::fetched) {
            first.emplace(request.position, representationOf(request, outcome));
            continue;
        }
        const std::vector<QByteArray> addresses = addressesOfUriList(outcome.bytes);
        std::copy_if(addresses.begin(), addresses.end(), std::back_inserter(files), isFileAddress);
        if (!files.empty())
            first.emplace(request.position, PasteboardRepresentation{fileURLType(), files.front()});
        if (files.size() < addresses.size() || files.empty()) // other addresses have no form of their own
            first.emplace(request.position, representationOf(request, outcome));
    }

    std::vector<PasteboardItem> items;
    if (!first.empty())
        items.emplace_back();
    for (auto &[position, form] : first)
        items.front().representations.push_back(std::move(form));
    for (size_t i = 1; i < files.size(); ++i)
        items.push_back({{{fileURLType(), files[i]}}});
    return items;
}

bool hasText(const std::vector<PasteboardItem> &items)
{
    return std::any_of(items.begin(), items.end(), [](const PasteboardItem &item) {
        const auto text = item.data(PasteboardType::plainText);
        return text && !isBlank(*text);
    });
}

std::optional<QByteArray> pictureToReencode(const std::vector<PasteboardItem> &items)
{
    if (items.size() != 1 || hasText(items) || items.front().data(PasteboardType::fileURL))
        return std::nullopt;
    const auto &forms = items.front().representations;
    if (std::any_of(forms.begin(), forms.end(), [](const auto &each) { return isKnownPicture(each.type); }))
        return std::nullopt;
    for (const PasteboardRepresentation &each : forms) {
        const bool picture = each.type.startsWith(u"image/") || each.type == u"application/x-qt-image";
        if (picture && !each.type.startsWith(u"image/svg") && each.type != u"image/x-xcf" && each.data)
            return each.data;
    }
    return std::nullopt;
}

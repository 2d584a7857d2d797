#include "Platform/linux/x11/TargetTypes.h"

#include "Platform/linux/x11/TypeTable.h"

namespace {

constexpr size_t maxTypes = 1024;

} // namespace

void TargetTypes::learn(const std::vector<ServedTarget> &originals)
{
    for (const ServedTarget &each : originals) {
        if (hasFixedMeaning(each.target))
            continue;
        if (each.type == each.target && each.format == 8)
            types.erase(each.target);
        else if (types.size() < maxTypes || types.contains(each.target))
            types.insert_or_assign(each.target, Type{each.type, each.format});
    }
}

void TargetTypes::apply(std::vector<ServedTarget> &targets) const
{
    for (ServedTarget &each : targets) {
        const auto known = types.find(each.target);
        if (known == types.end() || each.bytes.size() % (known->second.format / 8) != 0)
            continue;
        each.type = known->second.name;
        each.format = known->second.format;
    }
}

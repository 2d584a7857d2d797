#include "Vesmo/Text.h"

#include <limits>
#include <unicode/ustring.h>

// Qt's own mappings lack the final sigma. The mappings of the root locale keep a "Turkish" i out.

namespace {

using CaseMapping = int32_t (*)(char16_t *, int32_t, const char16_t *, int32_t, const char *, UErrorCode *);

constexpr char rootLocale[] = "";

int32_t map(CaseMapping mapping, QStringView text, QString &result, UErrorCode &status)
{
    status = U_ZERO_ERROR;
    return mapping(reinterpret_cast<char16_t *>(result.data()), static_cast<int32_t>(result.size()),
                   text.utf16(), static_cast<int32_t>(text.size()), rootLocale, &status);
}

QString mapped(CaseMapping mapping, QStringView text)
{
    if (text.isEmpty() || text.size() > std::numeric_limits<int32_t>::max())
        return text.toString();
    QString result(text.size(), Qt::Uninitialized);
    UErrorCode status = U_ZERO_ERROR;
    int32_t length = map(mapping, text, result, status);
    if (status == U_BUFFER_OVERFLOW_ERROR) {
        result.resize(length);
        length = map(mapping, text, result, status);
    }
    if (U_FAILURE(status))
        return text.toString();
    result.truncate(length);
    return result;
}

} // namespace

QString uppercased(QStringView text)
{
    return mapped(u_strToUpper, text);
}

QString lowercased(QStringView text)
{
    return mapped(u_strToLower, text);
}

QString capitalizedWord(QStringView word)
{
    // The rest is lowered together with the first, which tells whether a sigma is the last of several
    // letters. Lowering leaves the clusters as they are.
    const QString lower = lowercased(word);
    return uppercased(word.first(lengthOfClusters(word, 1))) +
           QStringView(lower).sliced(lengthOfClusters(lower, 1));
}

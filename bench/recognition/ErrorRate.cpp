#include "bench/recognition/ErrorRate.h"

#include <vector>

QString comparable(const QString &text)
{
    QString result = text.normalized(QString::NormalizationForm_C);
    result.replace(QChar(0x2026), QStringLiteral("..."));
    for (QChar &c : result) {
        switch (c.unicode()) {
        case 0x2018:
        case 0x2019:
        case 0x201a:
        case 0x60:
        case 0xb4:
            c = u'\'';
            break;
        case 0x201c:
        case 0x201d:
        case 0x201e:
        case 0xab:
        case 0xbb:
            c = u'"';
            break;
        case 0x2010:
        case 0x2011:
        case 0x2012:
        case 0x2013:
        case 0x2014:
        case 0x2212:
            c = u'-';
            break;
        default:
            break;
        }
    }
    return result.simplified();
}

qsizetype editDistance(const QString &from, const QString &to)
{
    std::vector<qsizetype> costs(static_cast<std::size_t>(to.size()) + 1);
    for (std::size_t j = 0; j < costs.size(); ++j)
        costs[j] = static_cast<qsizetype>(j);
    for (qsizetype i = 0; i < from.size(); ++i) {
        qsizetype diagonal = costs[0]++;
        for (std::size_t j = 1; j < costs.size(); ++j) {
            const bool same = from[i] == to[static_cast<qsizetype>(j) - 1];
            const qsizetype change = diagonal + (same ? 0 : 1);
            diagonal = costs[j];
            costs[j] = std::min({change, costs[j] + 1, costs[j - 1] + 1});
        }
    }
    return costs.back();
}

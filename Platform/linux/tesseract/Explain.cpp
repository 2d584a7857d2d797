#include "Platform/linux/tesseract/Explain.h"

#include <QDir>
#include <QFile>

namespace {

QString listed(const RecognizedFragment &fragment)
{
    const QRectF &box = fragment.box;
    return QStringLiteral("%1  %2 %3 %4 %5  %6\n")
        .arg(fragment.confidence, 0, 'f', 2)
        .arg(box.left(), 0, 'f', 4)
        .arg(box.top(), 0, 'f', 4)
        .arg(box.width(), 0, 'f', 4)
        .arg(box.height(), 0, 'f', 4)
        .arg(fragment.text);
}

} // namespace

bool explain(PageReader &reader, const QImage &upright, const QString &folder)
{
    const QDir target(folder);
    if (!target.mkpath(QStringLiteral(".")))
        return false;
    int number = 0;
    bool written = true;
    reader.onStage = [&](const QString &stage, const QImage &picture) {
        const QString name = QStringLiteral("%1-%2.png").arg(++number).arg(stage);
        written = picture.save(target.filePath(name)) && written;
    };
    const auto fragments = reader.read(upright, [] { return false; });
    reader.onStage = nullptr;
    QFile list(target.filePath(QStringLiteral("fragments.txt")));
    if (!list.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    for (const RecognizedFragment &fragment : fragments.value_or(std::vector<RecognizedFragment>{}))
        list.write(listed(fragment).toUtf8());
    return written && list.flush();
}

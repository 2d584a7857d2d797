#include "Platform/linux/x11/FileList.h"

#include <QByteArrayList>

std::vector<QByteArray> addressesOfUriList(const QByteArray &list)
{
    QByteArray lines = list;
    lines.replace('\r', '\n').replace('\0', '\n');
    std::vector<QByteArray> addresses;
    for (const QByteArray &line : lines.split('\n')) {
        const QByteArray address = line.trimmed();
        if (!address.isEmpty() && !address.startsWith('#'))
            addresses.push_back(address);
    }
    return addresses;
}

bool isFileAddress(const QByteArray &address)
{
    return address.size() > 5 && qstrnicmp(address.constData(), 5, "file:", 5) == 0;
}

QByteArray pathOfFileAddress(const QByteArray &address)
{
    QByteArray path = address.sliced(5);
    if (path.startsWith("//")) {
        const auto slash = path.indexOf('/', 2); // what stands between is the host
        path = slash < 0 ? QByteArray("/") : path.sliced(slash);
    }
    const QByteArray decoded = QByteArray::fromPercentEncoding(path);
    return decoded.contains('\0') ? path : decoded;
}

QByteArray uriList(const std::vector<QByteArray> &addresses)
{
    QByteArray list;
    for (const QByteArray &address : addresses)
        list += address + "\r\n";
    return list;
}

QByteArray copiedFilesList(const std::vector<QByteArray> &addresses)
{
    QByteArray list = "copy";
    for (const QByteArray &address : addresses)
        list += '\n' + address;
    return list;
}

QByteArray pathList(const std::vector<QByteArray> &addresses)
{
    QByteArrayList paths;
    for (const QByteArray &address : addresses)
        paths.push_back(pathOfFileAddress(address));
    return paths.join('\n');
}

#pragma once

#include <QByteArray>

// The bytes of an answer that comes in chunks. Most of the time that a large one takes goes into memory that
// was never used before, so they grow where they stand, in huge pages where the system has some at hand.
class GatheredBytes {
public:
    // Makes room for as many bytes as there will be.
    void expect(qsizetype size);
    void append(QByteArrayView chunk);
    [[nodiscard]] qsizetype size() const { return bytes.size(); }
    // Leaves none. What was expected and did not come takes no memory.
    [[nodiscard]] QByteArray take();

private:
    void advise(int advice);

    QByteArray bytes;
    bool hugePages = true;
    qint64 lost = 0; // ns, by waiting for them
};

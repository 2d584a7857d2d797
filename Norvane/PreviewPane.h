#pragma once

#include "Norvane/store/Clip.h"
#include "Norvane/store/NewestRequest.h"

#include <QPlainTextEdit>
#include <QWidget>
#include <functional>
#include <memory>

class ClipStore;
class Pasteboard;
class Preferences;
class QLabel;

// A text that can be selected and copied, through our own pasteboard, but not changed: selecting leaves the
// primary selection of the X server alone. Main thread.
class PreviewText : public QPlainTextEdit {
    Q_OBJECT

public:
    PreviewText(Pasteboard &pasteboard, QWidget *parent);

    // Shows a text from its beginning. Lines too long for the toolkit to lay out are cut for display.
    void showText(const QString &text, const QFont &font, qreal tabInterval);

    void copySelection();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    Pasteboard &pasteboard;
    std::vector<qsizetype> cuts; // line feeds that only the display has
};

// An image, scaled down to fit, never up, at the top of its frame's centre. Main thread.
class PreviewImage : public QWidget {
    Q_OBJECT

public:
    explicit PreviewImage(QWidget *parent);

    // `ready`: the image as fitted() makes it for the room that there is, to spare the next frame that.
    void setImage(const QImage &image, const QImage &ready = {});
    [[nodiscard]] const QImage &image() const { return image_; }

    // In pixels of the screen.
    [[nodiscard]] QSize room() const { return size() * devicePixelRatioF(); }
    // Tens of milliseconds for a large one. Any thread.
    [[nodiscard]] static QImage fitted(const QImage &image, const QSize &room);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QImage image_;
    QPixmap scaledImage; // in pixels of the screen
};

// The selected clip in full beside the list: its text (styled text plain so far) or image, or both, and a
// line about it. Main thread.
//
// Large images are read and decoded on workers; what arrives for a clip that is not shown any more is
// dropped.
class PreviewPane : public QWidget {
    Q_OBJECT

public:
    PreviewPane(Pasteboard &pasteboard, const Preferences &prefs, QWidget *parent);
    ~PreviewPane() override;

    // Whether images are being read at all: without that the pane promises no text.
    void setReadsImages(bool reads) { readsImages = reads; }

    // Null clears the pane. A clip of which nothing has changed keeps its scroll position.
    void show(const ClipPointer &clip, ClipStore &store);

    [[nodiscard]] QString information() const;
    [[nodiscard]] PreviewText &text() { return *textView; }
    [[nodiscard]] PreviewImage &image() { return *imageView; }

Q_SIGNALS:
    void pictureArrived(); // of the clip that is shown, decoded on the worker

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    enum class Arrangement { nothing, textOnly, imageOnly, imageAndText };

    QStringList showImage(const Clip &clip);
    QStringList showText(const Clip &clip);
    void loadImage(const Clip &clip, ClipStore &store);
    void decode(const QByteArray &bytes, const std::function<bool()> &isNewest);
    void arrange(Arrangement chosen);
    void placeViews();
    void applyColours();

    const Preferences &prefs;
    PreviewText *textView;
    PreviewImage *imageView;
    QLabel *infoLabel;
    QString info; // all of it; the label may show less
    Arrangement arrangement = Arrangement::nothing;
    QSizeF pixelSize;
    bool readsImages = false;
    bool promisesText = false; // of the image that is shown
    std::weak_ptr<Clip> shownClip;
    qint64 shownRevision = 0;
    NewestRequest pictures; // the newest is of the clip that is shown
};

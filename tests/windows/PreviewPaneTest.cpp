#include "Norvane/PreviewPane.h"

#include "Norvane/app/Preferences.h"
#include "Norvane/store/ClipStore.h"
#include "Platform/memory/MemoryPlatform.h"

#include <QBuffer>
#include <QElapsedTimer>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

QByteArray pngOf(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

class PreviewPaneTest : public ::testing::Test {
protected:
    PreviewPaneTest()
    {
        pane.resize(300, 400);
        pane.QWidget::show();
    }

    ClipPointer addText(const QString &text)
    {
        CapturedClip capture;
        capture.text = text;
        capture.hash = contentHash(text);
        capture.formats = {{0, u"public.utf8-plain-text"_s, text.toUtf8()}};
        return store.add(capture);
    }

    ClipPointer addImage(int width, int height, const QByteArray &otherForm = {})
    {
        CapturedClip capture;
        capture.kind = ClipKind::image;
        capture.formats = {{0, u"x/other"_s, otherForm}, {0, u"public.png"_s, pngOf(width, height)}};
        capture.hash = contentHash(capture.formats.back().data);
        capture.pixelSize = QSizeF(width, height);
        return store.add(capture);
    }

    QTemporaryDir folder;
    std::unique_ptr<Platform> platform = makeMemoryPlatform();
    Preferences prefs{*platform->defaults};
    ClipStore store{folder.path()};
    PreviewPane pane{*platform->pasteboard, prefs, nullptr};
};

} // namespace

TEST_F(PreviewPaneTest, InformationSaysWhatIsShown)
{
    pane.show(addText(u"a\nb\n"_s), store);
    EXPECT_TRUE(pane.information().startsWith(u"Testo · 4 caratteri · 3 righe · "_s))
        << pane.information().toStdString();
    pane.show(addText(u"una riga"_s), store);
    EXPECT_TRUE(pane.information().contains(u"1 riga"_s));
    pane.show(addImage(30, 20), store);
    EXPECT_FALSE(pane.information().contains(u"lettura"_s)) << "nothing here reads images";
    pane.setReadsImages(true);
    const ClipPointer image = addImage(40, 20);
    pane.show(image, store);
    EXPECT_TRUE(pane.information().startsWith(u"Immagine · 40×20 px · "_s))
        << pane.information().toStdString();
    EXPECT_TRUE(pane.information().contains(u"lettura del testo…"_s));
    pane.setReadsImages(false);
    pane.show(image, store);
    EXPECT_FALSE(pane.information().contains(u"lettura"_s)) << "of the clip that is shown already";
    pane.show(nullptr, store);
    EXPECT_TRUE(pane.information().isEmpty());
    EXPECT_FALSE(pane.text().isVisible());
    EXPECT_FALSE(pane.image().isVisible());
}

TEST_F(PreviewPaneTest, RecognizedTextJoinsItsImageWithoutANewSelection)
{
    const ClipPointer image = addImage(560, 200);
    pane.show(image, store);
    EXPECT_FALSE(pane.text().isVisible());
    store.setRecognizedText(u"Fattura n. 118"_s, image);
    pane.show(image, store);
    EXPECT_TRUE(pane.text().isVisible());
    EXPECT_TRUE(pane.image().isVisible());
    EXPECT_EQ(pane.text().toPlainText(), u"Fattura n. 118"_s);
    EXPECT_TRUE(pane.information().contains(u"testo riconosciuto"_s));
    EXPECT_LE(pane.image().height(), 300 * 200 / 560);
}

TEST_F(PreviewPaneTest, TheSameClipKeepsItsPlace)
{
    const ClipPointer clip = addText(u"riga\n"_s.repeated(500));
    pane.show(clip, store);
    pane.text().verticalScrollBar()->setValue(200);
    pane.show(clip, store);
    EXPECT_EQ(pane.text().verticalScrollBar()->value(), 200);
    pane.show(addText(u"altra\n"_s.repeated(500)), store);
    EXPECT_EQ(pane.text().verticalScrollBar()->value(), 0);
}

TEST_F(PreviewPaneTest, LargeImagesArriveFromAWorkerAndLateOnesAreDropped)
{
    const ClipPointer small = addImage(40, 20);
    for (const ClipPointer &large : {addImage(2196, 920), addImage(60, 20, QByteArray(4 << 20, 'x'))}) {
        const int width = static_cast<int>(large->pixelSize.width());
        const auto isShown = [&] { return pane.image().image().width() == width; };
        pane.show(large, store);
        EXPECT_FALSE(isShown()) << "the caller has waited for it";
        EXPECT_TRUE(QTest::qWaitFor(isShown));
        pane.show(large, store);
        pane.show(nullptr, store);
        pane.show(large, store); // asked for, and overtaken at once
        pane.show(small, store);
        EXPECT_FALSE(QTest::qWaitFor([&] { return pane.image().image().width() != 40; }, 300));

        auto brief = std::make_unique<PreviewPane>(*platform->pasteboard, prefs, nullptr);
        brief->show(large, store);
        brief.reset();
        pane.show(large, store);
        store.remove(large); // too early or too late for the reading: the next selection follows anyway
        pane.show(small, store);
        EXPECT_FALSE(QTest::qWaitFor([&] { return pane.image().image().width() != 40; }, 100));
    }
}

TEST_F(PreviewPaneTest, ALineWithoutBlanksIsShownInPiecesAndCopiedWhole)
{
    const QString line = u"x😀"_s.repeated(100000);
    pane.show(addText(line), store);
    pane.text().selectAll();
    pane.text().copySelection();
    const auto copied = platform->pasteboard->snapshot()->items.at(0).data(PasteboardType::plainText);
    EXPECT_EQ(QString::fromUtf8(copied.value_or(QByteArray())), line.left(75000));
}

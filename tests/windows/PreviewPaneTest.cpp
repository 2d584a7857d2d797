#include "Norvane/PreviewPane.h"

#include "tests/windows/MemoryDesktop.h"

#include <QScrollBar>

namespace {

class PreviewPaneTest : public MemoryDesktop {
protected:
    PreviewPaneTest()
    {
        pane.resize(300, 400);
        pane.QWidget::show();
    }

    ClipPointer addText(const QString &text) { return store.add(textCapture(text)); }
    ClipPointer addImage(int width, int height, const QByteArray &otherForm = {})
    {
        auto capture = imageCapture(encoded(filledImage(width, height, Qt::red)), QSizeF(width, height));
        capture.formats.insert(capture.formats.begin(), {0, "x/other", otherForm});
        return store.add(capture);
    }
    void show(const ClipPointer &clip) { pane.show(clip, store); }

    ClipStore store{folder.path()};
    PreviewPane pane{pasteboard, prefs, nullptr};
};

} // namespace

TEST_F(PreviewPaneTest, InformationSaysWhatIsShown)
{
    show(addText("a\nb\n"));
    EXPECT_TRUE(pane.information().startsWith("Testo · 4 caratteri · 3 righe · "))
        << pane.information().toStdString();
    show(addText("una riga"));
    EXPECT_TRUE(pane.information().contains("1 riga"));
    show(addImage(30, 20));
    EXPECT_FALSE(pane.information().contains("lettura")) << "nothing here reads images";
    pane.setReadsImages(true);
    const ClipPointer image = addImage(40, 20);
    show(image);
    EXPECT_TRUE(pane.information().startsWith("Immagine · 40×20 px · ")) << pane.information().toStdString();
    EXPECT_TRUE(pane.information().contains("lettura del testo…"));
    pane.setReadsImages(false);
    show(image);
    EXPECT_FALSE(pane.information().contains("lettura")) << "of the clip that is shown already";
    show(nullptr);
    EXPECT_TRUE(pane.information().isEmpty());
    EXPECT_FALSE(pane.text().isVisible());
    EXPECT_FALSE(pane.image().isVisible());
}

TEST_F(PreviewPaneTest, RecognizedTextJoinsItsImageWithoutANewSelection)
{
    const ClipPointer image = addImage(560, 200);
    show(image);
    EXPECT_FALSE(pane.text().isVisible());
    store.setRecognizedText("Fattura n. 118", image);
    show(image);
    EXPECT_TRUE(pane.text().isVisible());
    EXPECT_TRUE(pane.image().isVisible());
    EXPECT_EQ(pane.text().toPlainText(), "Fattura n. 118");
    EXPECT_TRUE(pane.information().contains("testo riconosciuto"));
    EXPECT_LE(pane.image().height(), 300 * 200 / 560);
}

TEST_F(PreviewPaneTest, TheSameClipKeepsItsPlace)
{
    const ClipPointer clip = addText(QString("riga\n").repeated(500));
    show(clip);
    pane.text().verticalScrollBar()->setValue(200);
    show(clip);
    EXPECT_EQ(pane.text().verticalScrollBar()->value(), 200);
    show(addText(QString("altra\n").repeated(500)));
    EXPECT_EQ(pane.text().verticalScrollBar()->value(), 0);
}

TEST_F(PreviewPaneTest, LargeImagesArriveFromAWorkerAndLateOnesAreDropped)
{
    const ClipPointer small = addImage(40, 20);
    for (const ClipPointer &large : {addImage(2196, 920), addImage(60, 20, QByteArray(4 << 20, 'x'))}) {
        const int width = static_cast<int>(large->pixelSize.width());
        const auto isShown = [&] { return pane.image().image().width() == width; };
        show(large);
        EXPECT_FALSE(isShown()) << "the caller has waited for it";
        EXPECT_TRUE(QTest::qWaitFor(isShown));
        show(large);
        show(nullptr);
        show(large); // asked for, and overtaken at once
        show(small);
        EXPECT_FALSE(QTest::qWaitFor([&] { return pane.image().image().width() != 40; }, 300));

        auto brief = std::make_unique<PreviewPane>(pasteboard, prefs, nullptr);
        brief->show(large, store);
        brief.reset();
        show(large);
        store.remove(large); // too early or too late for the reading: the next selection follows anyway
        show(small);
        EXPECT_FALSE(QTest::qWaitFor([&] { return pane.image().image().width() != 40; }, 100));
    }
}

TEST_F(PreviewPaneTest, ALineWithoutBlanksIsShownInPiecesAndCopiedWhole)
{
    const QString line = QString("x😀").repeated(100000);
    show(addText(line));
    pane.text().selectAll();
    pane.text().copySelection();
    const auto copied = pasteboard.snapshot()->items.at(0).data(PasteboardType::plainText);
    EXPECT_EQ(QString::fromUtf8(copied.value_or(QByteArray())), line.left(75000));
}

#pragma once

#include "Norvane/app/RecognitionWorker.h"
#include "Norvane/store/Clip.h"
#include "Norvane/store/NewestRequest.h"

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>

class ClipStore;

// Reads the text of image clips in the background, one image at a time, and writes it into the history, so
// that images can be searched and pasted as text. Owned by AppDelegate. Main thread.
//
// The history is the list of work: an image clip without recognised text is one to read. Every image that is
// read gets a result, an unreadable one the empty text, so that none is read twice. While nothing can be read
// at all (no language data, no recognition process), images stay as they are and the next kick asks again;
// when it ended with an image in hand, a kick of its own follows.
class TextRecognitionQueue : public QObject {
    Q_OBJECT

public:
    // Starts nothing. `isEnabled` is asked before every pick.
    TextRecognitionQueue(ClipStore &store, std::shared_ptr<RecognitionService> service,
                         std::function<bool()> isEnabled);

    // The end of the program for the service: the image under way is given up and stays unread.
    ~TextRecognitionQueue() override;

    // Starts work if there is any, and returns at once.
    void kick();

    // From the moment that an image is handed to the background until its result is stored.
    [[nodiscard]] bool isBusy() const { return bool(current); }

    // Whether images can be read here, as far as is known: not before the first kick was answered.
    [[nodiscard]] bool canRead() const { return canRead_.value_or(false); }
    std::function<void(bool canRead)> onCanReadChange;

private:
    void pickNext();
    void hand(std::optional<QByteArray> image);
    void finish();
    void setCanRead(bool value);

    ClipStore &store;
    std::function<bool()> isEnabled;
    RecognitionWorker queue;
    QSocketNotifier ready;
    ClipPointer current; // the image that is being read
    NewestRequest images;
    bool isAsking = false;
    QTimer again;
    std::optional<bool> canRead_;
};

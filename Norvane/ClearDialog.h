#pragma once

#include <QObject>
#include <QPointer>
#include <functional>

class QMessageBox;
class QWidget;

// The question before the history is emptied; at most one at a time. Main thread.
class ClearDialog : public QObject {
    Q_OBJECT

public:
    ~ClearDialog() override;

    // Asks and returns at once; a question that is open already comes forward. `panel` is the history panel
    // when it is open, else null: the question lies above it then, and goes with it.
    void ask(QWidget *panel);

    std::function<void()> onConfirm; // the user wants the history emptied

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void open(QWidget *panel);

    QPointer<QMessageBox> box;
};

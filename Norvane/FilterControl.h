#pragma once

#include <QStringList>
#include <QWidget>

// A row of segments of which one is selected. Main thread.
class FilterControl : public QWidget {
    Q_OBJECT

public:
    FilterControl(const QStringList &labels, QWidget *parent);

    [[nodiscard]] int selectedSegment() const { return selectedSegment_; }
    void setSelectedSegment(int segment); // emits nothing

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void segmentChosen(int segment); // by the user

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    [[nodiscard]] QRect segmentRect(int segment) const;

    QStringList labels;
    int selectedSegment_ = 0;
};

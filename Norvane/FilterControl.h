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
    void choose(int segment);             // as the user does; the selected one is left alone

    [[nodiscard]] int segmentCount() const { return static_cast<int>(labels.size()); }
    [[nodiscard]] QString segmentLabel(int segment) const { return labels.value(segment); }
    [[nodiscard]] QRect segmentRect(int segment) const;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void segmentChosen(int segment); // by the user

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    QStringList labels;
    int selectedSegment_ = 0;
};

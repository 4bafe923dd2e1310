#pragma once

// The up/down spinner: two small arrow buttons, one above the other, that step something up or down. It holds
// no value of its own.

#include <QWidget>

class QToolButton;

namespace vss {

class UpDown : public QWidget {
    Q_OBJECT

public:
    explicit UpDown(QWidget* parent = nullptr);

    // The names a screen reader gives the two arrows (by default "Up" and "Down").
    void setButtonNames(const QString& up, const QString& down);

signals:
    void up();
    void down();

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QToolButton* up_;
    QToolButton* down_;
};

} // namespace vss

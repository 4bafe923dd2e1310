#include "controls/UpDown.h"

#include <QToolButton>

namespace vss {

UpDown::UpDown(QWidget* parent) : QWidget(parent), up_(new QToolButton(this)), down_(new QToolButton(this)) {
    up_->setObjectName(QStringLiteral("up"));
    down_->setObjectName(QStringLiteral("down"));
    up_->setArrowType(Qt::UpArrow);
    down_->setArrowType(Qt::DownArrow);
    setButtonNames(QStringLiteral("Up"), QStringLiteral("Down"));
    connect(up_, &QToolButton::clicked, this, &UpDown::up);
    connect(down_, &QToolButton::clicked, this, &UpDown::down);
}

void UpDown::setButtonNames(const QString& up, const QString& down) {
    up_->setAccessibleName(up);
    down_->setAccessibleName(down);
}

void UpDown::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    const int half = height() / 2;
    up_->setGeometry(0, 0, width(), half);
    down_->setGeometry(0, half, width(), height() - half);
}

} // namespace vss

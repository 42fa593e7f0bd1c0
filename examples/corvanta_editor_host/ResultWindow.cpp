#include "ResultWindow.hpp"

#include <QKeyEvent>
#include <QPainter>

ResultWindow::ResultWindow(const QString& text) : text_(text) {
    setTitle(QStringLiteral("Corvanta editor"));
    resize(390, 844);
}

void ResultWindow::setText(const QString& text) {
    text_ = text;
    update();
}

void ResultWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area(QPoint(0, 0), size());
    painter.fillRect(area, QColor(24, 24, 26));
    painter.setPen(Qt::white);
    painter.drawText(area.adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWrapAnywhere, text_);
}

void ResultWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape || event->key() == Qt::Key_Q) {
        close();
    }
}

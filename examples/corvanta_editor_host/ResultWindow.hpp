#pragma once

#include <QRasterWindow>
#include <QString>

/// The host's own window: a text, and a way out.
class ResultWindow : public QRasterWindow {
  public:
    explicit ResultWindow(const QString& text);

    void setText(const QString& text);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QString text_;
};

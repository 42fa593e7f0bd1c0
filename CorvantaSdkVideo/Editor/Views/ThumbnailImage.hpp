#pragma once

#include <QImage>
#include <QList>
#include <QQuickPaintedItem>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// One of a list's images, fitted to the item. An absent one leaves the item empty.
class ThumbnailImage : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<QImage> images MEMBER images_ WRITE setImages NOTIFY imagesChanged)
    Q_PROPERTY(int index MEMBER index_ WRITE setIndex NOTIFY indexChanged)

  public:
    void setImages(const QList<QImage>& images);
    void setIndex(int index);

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void imagesChanged();
    void indexChanged();

  private:
    void choose();

    QList<QImage> images_;
    int index_ = 0;
    QImage image_;
};

} // namespace corvanta

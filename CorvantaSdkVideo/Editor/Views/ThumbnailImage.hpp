#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <QImage>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// One of the view model's thumbnails, fitted to the item. As long as it is blank, so is the item.
class ThumbnailImage : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(corvanta::CorvantaSdkVideoEditorViewModel* viewModel READ viewModel WRITE setViewModel NOTIFY
                   viewModelChanged)
    Q_PROPERTY(int index READ index WRITE setIndex NOTIFY indexChanged)

  public:
    CorvantaSdkVideoEditorViewModel* viewModel() const { return viewModel_; }
    void setViewModel(CorvantaSdkVideoEditorViewModel* viewModel);
    int index() const { return index_; }
    void setIndex(int index);

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void viewModelChanged();
    void indexChanged();

  private:
    void takeImage();

    QPointer<CorvantaSdkVideoEditorViewModel> viewModel_;
    int index_ = 0;
    QImage image_;
};

} // namespace corvanta

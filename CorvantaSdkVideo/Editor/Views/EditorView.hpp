#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/OrientationManager.hpp>

#include <QPointer>
#include <QQuickItem>
#include <QtQmlIntegration/qqmlintegration.h>

namespace corvanta {

/// What the screen's QML stands on: its members, and the two operations that end it.
class EditorView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(corvanta::CorvantaSdkVideoEditorViewModel* viewModel READ viewModel WRITE setViewModel NOTIFY
                   viewModelChanged REQUIRED)
    Q_PROPERTY(corvanta::OrientationManager* orientationManager READ orientationManager WRITE
                   setOrientationManager NOTIFY orientationManagerChanged REQUIRED)

  public:
    explicit EditorView(QQuickItem* parent = nullptr);

    CorvantaSdkVideoEditorViewModel* viewModel() const { return viewModel_; }
    void setViewModel(CorvantaSdkVideoEditorViewModel* viewModel);
    OrientationManager* orientationManager() const { return orientationManager_; }
    void setOrientationManager(OrientationManager* orientationManager);

    Q_INVOKABLE void trimVideo();
    Q_INVOKABLE void closeTrimmer();

  Q_SIGNALS:
    void viewModelChanged();
    void orientationManagerChanged();
    /// The screen has done its work and wants to be closed.
    void dismiss();

  private:
    std::function<void()> dismissing();

    QPointer<CorvantaSdkVideoEditorViewModel> viewModel_;
    QPointer<OrientationManager> orientationManager_;
};

} // namespace corvanta

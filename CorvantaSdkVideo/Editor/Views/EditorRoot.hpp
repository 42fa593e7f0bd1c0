#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/OrientationManager.hpp>

#include <QPointer>
#include <QQuickItem>
#include <QtQmlIntegration/qqmlintegration.h>

#include <memory>

Q_MOC_INCLUDE(<CorvantaSdkVideo / Editor / CutChoice.hpp>)
Q_MOC_INCLUDE(<CorvantaSdkVideo / Editor / Playhead.hpp>)
Q_MOC_INCLUDE(<CorvantaSdkVideo / Editor / StripZoom.hpp>)
Q_MOC_INCLUDE(<CorvantaSdkVideo / Editor / Waveform.hpp>)

namespace corvanta {

class CutChoice;
class Playhead;
class StripZoom;
class Waveform;

/// What the screen's QML stands on: its members, the operations that end it, and what they ask before.
class EditorRoot : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(corvanta::CorvantaSdkVideoEditorViewModel* viewModel READ viewModel WRITE setViewModel NOTIFY
                   viewModelChanged REQUIRED)
    Q_PROPERTY(corvanta::OrientationManager* orientationManager READ orientationManager WRITE
                   setOrientationManager NOTIFY orientationManagerChanged REQUIRED)
    Q_PROPERTY(corvanta::CutChoice* cutChoice READ cutChoice NOTIFY viewModelChanged)
    Q_PROPERTY(corvanta::Playhead* playhead READ playhead NOTIFY viewModelChanged)
    Q_PROPERTY(corvanta::StripZoom* stripZoom READ stripZoom NOTIFY viewModelChanged)
    Q_PROPERTY(corvanta::Waveform* waveform READ waveform NOTIFY viewModelChanged)
    Q_PROPERTY(bool isAskedToLeave READ isAskedToLeave NOTIFY isAskedToLeaveChanged)

  public:
    explicit EditorRoot(QQuickItem* parent = nullptr);
    ~EditorRoot() override;

    CorvantaSdkVideoEditorViewModel* viewModel() const { return viewModel_; }
    void setViewModel(CorvantaSdkVideoEditorViewModel* viewModel);
    OrientationManager* orientationManager() const { return orientationManager_; }
    void setOrientationManager(OrientationManager* orientationManager);

    CutChoice* cutChoice() const { return cutChoice_.get(); }
    Playhead* playhead() const { return playhead_.get(); }
    StripZoom* stripZoom() const { return stripZoom_.get(); }
    Waveform* waveform() const { return waveform_.get(); }
    /// Whether the question stands whether changes may go.
    bool isAskedToLeave() const { return isAskedToLeave_; }

    Q_INVOKABLE void trimVideo();
    Q_INVOKABLE void closeTrimmer();
    /// Closes, but asks before if that would discard changes.
    Q_INVOKABLE void requestClose();
    Q_INVOKABLE void stay();

  Q_SIGNALS:
    void viewModelChanged();
    void orientationManagerChanged();
    void isAskedToLeaveChanged();
    /// The screen has done its work and wants to be closed.
    void dismiss();

  private:
    std::function<void()> dismissing();
    void setAskedToLeave(bool isAsked);

    QPointer<CorvantaSdkVideoEditorViewModel> viewModel_;
    QPointer<OrientationManager> orientationManager_;
    std::unique_ptr<CutChoice> cutChoice_;
    std::unique_ptr<Playhead> playhead_;
    std::unique_ptr<StripZoom> stripZoom_;
    std::unique_ptr<Waveform> waveform_;
    bool isAskedToLeave_ = false;
};

} // namespace corvanta

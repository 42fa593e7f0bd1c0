#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>
#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>

#include <QObject>
#include <QTimer>
#include <QtQmlIntegration/qqmlintegration.h>

#include <optional>

namespace corvanta {

/// Finds out ahead what copying the chosen range would lose. Where it loses nothing, confirming copies; else
/// it asks first. Either way the picture comes out as the screen shows it. Lives as long as its view model at
/// most, on the Qt thread.
class CutChoice : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The screen makes it")
    Q_PROPERTY(bool isAsked READ isAsked NOTIFY isAskedChanged)
    Q_PROPERTY(QString loss READ loss NOTIFY inspected)
    Q_PROPERTY(bool isFastPossible READ isFastPossible NOTIFY inspected)
    Q_PROPERTY(QString exactTime READ exactTime NOTIFY inspected)

  public:
    explicit CutChoice(CorvantaSdkVideoEditorViewModel& viewModel);

    /// Edits, or asks how. While the range is still being looked at, that is waited for.
    void confirm(CorvantaSdkVideoEditorViewModel::Handler handler);
    /// The answers: an exact cut, a copied one, or none of them.
    Q_INVOKABLE void takeExact();
    Q_INVOKABLE void takeFast();
    Q_INVOKABLE void takeBack();

    bool isAsked() const { return isAsked_; }
    /// Of the present range, as far as it is known.
    std::optional<CorvantaSdkVideoCutInspection> inspection() const { return inspection_; }
    /// What copying the range would lose, in words; empty if nothing is lost, or known.
    QString loss() const;
    /// Whether copying keeps a picture at all; without one it would fail, or leave sound alone.
    bool isFastPossible() const { return inspection_ && inspection_->copiedStart; }
    /// About how long an exact cut takes, in words.
    QString exactTime() const;

  Q_SIGNALS:
    void isAskedChanged();
    /// The range's inspection has come, or has been given up with the range.
    void inspected();

  private:
    void forget();
    void inspect();
    void take(const std::optional<CorvantaSdkVideoCutInspection>& inspection);
    void decide();
    void edit(CorvantaSdkVideoCut cut);
    void setAsked(bool isAsked);

    static Task<> look(QPointer<CutChoice> choice, std::shared_ptr<CorvantaSdkVideoEditor> editor, URL video,
                       CorvantaSdkVideoTimeRange range, int round);

    CorvantaSdkVideoEditorViewModel& viewModel_;
    std::optional<CorvantaSdkVideoEditorViewModel::Handler> confirmed_;
    std::optional<CorvantaSdkVideoCutInspection> inspection_;
    bool isAsked_ = false;
    bool isLooking_ = false;
    /// Counts the ranges that were looked at.
    int round_ = 0;
    /// A hand that drags gives many ranges.
    QTimer rest_;
};

} // namespace corvanta

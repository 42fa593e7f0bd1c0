#pragma once

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorViewModel.hpp>
#include <CorvantaSdkVideo/Editor/Presentation/OrientationManager.hpp>
#include <CorvantaSdkVideo/Editor/Views/CorvantaColor.hpp>

#include <QObject>
#include <QtQmlIntegration/qqmlintegration.h>

/// The screen's names for what knows nothing of QML.
namespace corvanta {

struct CorvantaSdkVideoEditorViewModelInQml {
    Q_GADGET
    QML_FOREIGN(corvanta::CorvantaSdkVideoEditorViewModel)
    QML_NAMED_ELEMENT(CorvantaSdkVideoEditorViewModel)
    QML_UNCREATABLE("The presentation makes it")
};

struct OrientationManagerInQml {
    Q_GADGET
    QML_FOREIGN(corvanta::OrientationManager)
    QML_NAMED_ELEMENT(OrientationManager)
    QML_UNCREATABLE("There is one for the process")
};

class CorvantaColorInQml : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(CorvantaColor)
    QML_SINGLETON
    Q_PROPERTY(QColor ambar READ ambar CONSTANT)
    Q_PROPERTY(QColor gray READ gray CONSTANT)

  public:
    QColor ambar() const { return CorvantaColor::ambar; }
    QColor gray() const { return CorvantaColor::gray; }
};

} // namespace corvanta

#pragma once

#include <QObject>
#include <QString>

namespace corvanta {

/// Which way up the host stands. The editor's layout is a portrait one; in a host that knows landscape alone
/// it is turned by a quarter.
class OrientationManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isPortraitModeSupported READ isPortraitModeSupported CONSTANT)
    Q_PROPERTY(OrientationMask supportedOrientation READ supportedOrientation CONSTANT)

  public:
    enum class OrientationMask { portrait = 2, landscapeRight = 8, landscapeLeft = 16 };
    Q_ENUM(OrientationMask)

    /// Reads the list "UISupportedInterfaceOrientations" of a JSON file. "UIInterfaceOrientationPortrait" in
    /// it means portrait, else "UIInterfaceOrientationLandscapeRight" landscape right, else it is landscape
    /// left. Without the file, or without such a list of texts in it, portrait.
    explicit OrientationManager(const QString& informationFile);

    /// That of the host, whose file is `Info.json` beside its executable. Read once, at the first use; needs
    /// the application object.
    static OrientationManager& shared();

    OrientationMask supportedOrientation() const { return supportedOrientation_; }
    bool isPortraitModeSupported() const { return supportedOrientation_ == OrientationMask::portrait; }

  private:
    const OrientationMask supportedOrientation_;
};

} // namespace corvanta

#pragma once

#include <platform/URL.hpp>

#include <QUrl>

namespace corvanta {

/// Stands for a picture's file until that has been read and removed. An application that ends waits for
/// those, but not for one that hangs: else they would stay in the user's documents. Safe from any thread.
struct PictureInTheMaking {
    PictureInTheMaking();
    PictureInTheMaking(const PictureInTheMaking&) = delete;
    PictureInTheMaking& operator=(const PictureInTheMaking&) = delete;
    ~PictureInTheMaking();
};

/// Removes a picture's file, if the module has made it: an editor of the host's own may hand out files from
/// elsewhere, which aren't ours to remove.
void removeIfMade(const URL& picture);

/// The picture itself as a "data" URL, whose file then goes likewise; empty if it can't be read.
QUrl takePicture(const URL& picture, const char* mimeType);

} // namespace corvanta

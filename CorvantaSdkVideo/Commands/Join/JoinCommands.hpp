#pragma once

#include <CorvantaSdkVideo/Commands/Join/JoinForm.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommand.hpp>
#include <platform/URL.hpp>

#include <string>
#include <vector>

namespace corvanta {

/// The command that copies all picture and sound tracks of the files, one file behind the other, with the
/// tags of the first one. Writes the list file at `list`, replacing what is there; the caller deletes it.
/// `listed` are the paths as the list holds them, `first` is the first file as a command holds it, and
/// `tagOptions` what `keptTags` gives for it as input 1.
FFMPEGCommand joinByCopyCommand(const JoinFile& file, const std::vector<std::string>& listed,
                                const URL& first, const URL& list, const std::string& tagOptions,
                                const std::string& output);

} // namespace corvanta

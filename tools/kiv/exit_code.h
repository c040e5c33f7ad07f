/// What a script learns from kiv without reading its texts. docs/kiv-tool.md documents the numbers: they do not change.
#pragma once

enum class ExitCode {
    kOk = 0,
    kFailed = 1,             ///< an operation on a camera, a feature or a file failed
    kUsage = 2,              ///< the command line is wrong
    kNothingFound = 3,       ///< no registry, no producer, or no camera
    kNoSuchCamera = 4,       ///< the camera that was asked for is not there, is ambiguous, or is in use
    kIncompleteGrab = 5,     ///< a grab ended with fewer good images than asked for
    kFaultyDescription = 6,  ///< lint found errors or warnings
    kNoDisplay = 7,          ///< there is no screen to open a window on
    kInterrupted = 130,      ///< ended by Ctrl-C, as shells count it
};

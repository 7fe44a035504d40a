// One operation of a Photoshop format plug-in: the plug-in loaded, the record that all calls of the operation
// share, and the file that it works on.
#pragma once

#include "ZVFormatRecord.h"

#include "FormatModule.h"
#include "files/ResourceFile.h"

#include <memory>

long Max_Block();  ///< Bytes of the largest block that can be had.

class PluginCall {
public:
    /// Loads the plug-in and sets up the record.
    /// @param clip  whose VideoParams are the plug-in's options, as it leaves them; null for none
    PluginCall(ZVFormatDesc* format, ZVClip* clip);

    /// Gives the plug-in up, closes the file, and hands the options back to the clip.
    ~PluginCall();
    PluginCall(PluginCall const&) = delete;
    PluginCall& operator=(PluginCall const&) = delete;

    bool Is_Loaded() const { return entry_ != nullptr; }
    FormatRecord& Record() { return record_; }

    /// Opens a file with its resources, and tells the plug-in of it.
    bool Open_File(char const* spec);

    /// The same for a file to be written, with a resource file that is dropped again when nothing comes in.
    bool Create_File(char const* spec, uint32_t type, uint32_t creator);

    /// From now on the first failure is shown to the user.
    void Show_Failure() { showsFailure_ = true; }

    /// Calls the plug-in. The first failure of an operation is the one that counts.
    /// @return  whether this call went well
    bool Send(int selector);

    void Fail(short result);  ///< Counts as a failed call.
    bool Succeeded() const { return result_ == 0; }

    /// Makes the resources that were written last. False with the error number set.
    bool Save_Resources();

private:
    void Take_File(char const* spec);

    ZVFormatDesc* format_;
    ZVClip* clip_;
    FormatPluginEntry entry_;
    FormatRecord record_ = {};
    BufferProcs buffers_ = {};
    HandleProcs handles_ = {};
    FilePtr file_;
    std::unique_ptr<ZVResourceFile> resources_;
    char* newCompanion_ = nullptr;  ///< spec of a companion that this made
    FSSpec place_;
    short result_ = 0;
    bool showsFailure_ = false;
};

/// Tells the plug-in of a picture of the clip that is to be written.
void Describe_Picture(FormatRecord& record, ZVClip const& clip, PlugInMode mode, long depth);

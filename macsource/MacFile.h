// What the desktop layer's file sources share: native paths of specs, and error numbers of failed system
// calls.
#pragma once

#include "ZVFileSpec.h"

#include <climits>
#include <string>
#include <string_view>

/// A native path. Of fixed size, so that opening a file asks for no memory.
class MacPath {
public:
    MacPath() { text_[0] = 0; }

    /// The native path of a spec or classic path.
    /// @return  0; EINVAL for null and for a text without a volume part, ENODEV for an unknown volume,
    ///          ENAMETOOLONG for a text or path too long for the buffers, ENOMEM
    int Set(char const* spec);

    /// Takes slashes off the end of a path other than "/"; behind one, a link would stand for what it leads
    /// to.
    void Strip_Closing_Slashes();

    char const* Text() const { return text_; }
    std::string_view View() const { return {text_, length_}; }

private:
    bool Append(std::string_view native);
    bool Append_Spec(std::string_view rest);

    char text_[PATH_MAX];
    std::size_t length_ = 0;
};

/// A native name as it stands in a spec, and back: colon and backslash, which separate there, are exchanged
/// for U+F03A and U+F05C.
std::string Mac_Name_To_Spec(std::string_view name);
std::string Mac_Name_From_Spec(std::string_view name);

bool Mac_Is_Directory(char const* path);  ///< Also through a link.

/// Stores the error number that stands for an errno value; 0 clears it.
void Mac_Set_File_Error(int error);

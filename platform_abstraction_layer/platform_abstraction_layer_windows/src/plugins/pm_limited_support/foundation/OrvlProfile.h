// foundation/OrvlProfile.h
//
// One configuration file in a user's folder "Kelvo\ORVL\Cfg". Folder and file come into being on first use.
#pragma once

#include "foundation/OrvlCfg.h"

class ORVL_API CORVLProfile : public CORVLCfg
{
public:
    CORVLProfile() noexcept;
    CORVLProfile(const CORVLProfile&) noexcept;
    CORVLProfile& operator=(const CORVLProfile&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CORVLProfile() override;

    /// Opens `file` and creates it, with its folders, where it is missing. `where` null means the
    /// configuration folder of the running account; with `whereIsUser` 0 `where` is a folder, otherwise an
    /// account name. 1 when the file exists afterwards, else 0. Without a folder, or when the path doesn't
    /// fit, nothing is created and the path is empty.
    [[nodiscard]] int Initialize(const wchar_t* file, const wchar_t* where, int whereIsUser) noexcept;

    /// The configuration folder of the running account, `size` in characters; null when it can't be had.
    wchar_t* GetHomePath(wchar_t* buffer, int size) noexcept;
};

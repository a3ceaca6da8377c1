// Where the database lies: in the folder "Vexal" beside the folder that holds the executable.
//
// Pure functions of the executable's path, which may use either separator. Paths come back in the form that
// the database and the programs reading it use, with backslashes; NativePath turns one into what this
// platform's file functions take.
#pragma once

#include "data/records.h"

namespace quorvane {

// The folder above the executable's folder, without a trailing backslash: "C:\Programs\Lighting" for
// "C:\Programs\Lighting\Bin\tool.exe", "C:" for "C:\tool.exe"; empty when there is none.
CString ApplicationParentFolder(const CString& executablePath);

// That folder followed by "\Vexal\灯具数据库.mdb", or empty when there is no such folder.
CString DatabasePath(const CString& executablePath);

// A stored path as this platform writes it. Done only at the moment when a file is touched.
CString NativePath(const CString& storedPath);

}  // namespace quorvane

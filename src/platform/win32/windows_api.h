#pragma once
// <windows.h> without the A/W macros that would rename our own names: the
// file system's CopyFile, DeleteFile and the rest, the processes'
// FindExecutable and the run time's GetFileTitle would otherwise become
// CopyFileW and so on in one file and not in the next.
#include <windows.h>
// Included here so that a later include cannot bring their macros back.
#include <commdlg.h>
#include <shellapi.h>

#undef CopyFile
#undef CreateDirectory
#undef DeleteFile
#undef FindExecutable
#undef GetFileTitle
#undef GetLongPathName
#undef RemoveDirectory

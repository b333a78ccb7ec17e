/*
 * folder_list.h -- the entries of a folder, for the terminal's file dialog.
 */
#ifndef ORTO_PLATFORM_FOLDER_LIST_H
#define ORTO_PLATFORM_FOLDER_LIST_H

#include <string>
#include <vector>

struct FolderEntry {
    std::string name;
    bool isFolder;
};

/* The entries of `folder` but "." and "..", folders first, each group in
 * byte order.  False if the folder can't be read. */
bool listFolder(const char *folder, std::vector<FolderEntry> *entries);
/* True if `path` names a folder. */
bool isFolder(const char *path);
/* The current folder, or "." if it can't be had. */
std::string currentFolder(void);

#endif

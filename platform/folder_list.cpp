#include "platform/folder_list.h"

#include <dirent.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

bool isFolder(const char *path)
{
    struct stat st;
    return path && stat(path, &st) == 0 && S_ISDIR(st.st_mode);
}

bool listFolder(const char *folder, std::vector<FolderEntry> *entries)
{
    entries->clear();
    DIR *d = opendir(folder && *folder ? folder : ".");
    if (!d)
        return false;
    std::string base = folder && *folder ? folder : ".";
    while (struct dirent *e = readdir(d)) {
        std::string name = e->d_name;
        if (name == "." || name == "..")
            continue;
        entries->push_back({name, isFolder((base + "/" + name).c_str())});
    }
    closedir(d);
    std::sort(entries->begin(), entries->end(), [](const FolderEntry &a, const FolderEntry &b) {
        return a.isFolder != b.isFolder ? a.isFolder : a.name < b.name;
    });
    return true;
}

std::string currentFolder(void)
{
    char buffer[PATH_MAX];
    return getcwd(buffer, sizeof buffer) ? std::string(buffer) : std::string(".");
}

// SPDX-License-Identifier: GPL-3.0-or-later
#include "context/FileLook.h"

#include <filesystem>

namespace {

namespace fs = std::filesystem;

FileKind kindOnDisk(const QString &path)
{
    std::error_code error;
    const fs::file_status status = fs::status(path.toStdString(), error);
    if (!fs::exists(status))
        return FileKind::Missing;
    return fs::is_directory(status) ? FileKind::Folder : FileKind::Other;
}

QStringList namesOnDisk(const QString &folder)
{
    QStringList names;
    std::error_code error;
    for (fs::directory_iterator it(folder.toStdString(), error), end; !error && it != end;
         it.increment(error)) {
        const std::string bytes = it->path().filename().string();
        const QString name = QString::fromStdString(bytes);
        if (name.toStdString() == bytes)
            names.append(name);
    }
    return names;
}

} // namespace

FileLook FileLook::disk()
{
    return {kindOnDisk, namesOnDisk};
}

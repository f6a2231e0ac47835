#include "platform/Paths.h"

#include <climits>
#include <unistd.h>
#include <vector>

std::string Paths::clean(std::string_view path)
{
    const bool rooted = path.starts_with('/');
    std::vector<std::string_view> kept;
    std::size_t ups = 0; // leading ".." of a relative path, which nothing can take away
    for (std::size_t start = 0; start <= path.size();) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos)
            end = path.size();
        const std::string_view piece = path.substr(start, end - start);
        start = end + 1;
        if (piece.empty() || piece == ".")
            continue;
        if (piece != "..")
            kept.push_back(piece);
        else if (!kept.empty())
            kept.pop_back();
        else if (!rooted)
            ++ups;
    }
    std::string out = rooted ? "/" : "";
    for (std::size_t i = 0; i < ups; ++i)
        out += i + 1 < ups || !kept.empty() ? "../" : "..";
    for (std::size_t i = 0; i < kept.size(); ++i) {
        out += kept[i];
        if (i + 1 < kept.size())
            out += '/';
    }
    return out.empty() ? "." : out;
}

std::string Paths::absolute(std::string_view path, std::string_view base)
{
    if (path.starts_with('/'))
        return clean(path);
    std::string joined(base);
    joined += '/';
    joined += path;
    return clean(joined);
}

std::string Paths::currentFolder()
{
    std::string buffer(PATH_MAX, '\0');
    if (getcwd(buffer.data(), buffer.size()) == nullptr || buffer[0] != '/')
        return "/";
    buffer.resize(buffer.find('\0'));
    return buffer;
}

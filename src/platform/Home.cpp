#include "platform/Home.h"

#include "platform/Paths.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

std::string Home::path()
{
    // Every protection rule compares against this, so it has the one clean spelling.
    if (const char *env = std::getenv("HOME"); env && env[0] == '/')
        return Paths::clean(env);
    if (const passwd *pw = getpwuid(getuid()); pw && pw->pw_dir && pw->pw_dir[0] == '/')
        return Paths::clean(pw->pw_dir);
    return "/";
}

std::string Home::trash()
{
    // A relative XDG_DATA_HOME is invalid and ignored, as the base-directory rules say.
    if (const char *data = std::getenv("XDG_DATA_HOME"); data && data[0] == '/')
        return Paths::absolute("Trash", data);
    return Paths::absolute(".local/share/Trash", path());
}

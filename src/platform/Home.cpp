#include "platform/Home.h"

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

std::string Home::path()
{
    std::string home;
    if (const char *env = std::getenv("HOME"); env && *env)
        home = env;
    else if (const passwd *pw = getpwuid(getuid()); pw && pw->pw_dir)
        home = pw->pw_dir;
    else
        home = "/";
    while (home.size() > 1 && home.back() == '/')
        home.pop_back();
    return home;
}

// Launch PROGRAM [ARGUMENT...]: becomes the program, which measures the time from here.
#include "Footprint.h"

#include <unistd.h>

int main(int argc, char *argv[])
{
    if (argc < 2)
        return EXIT_FAILURE;
    qputenv(Footprint::startVariable, QByteArray::number(Footprint::now()));
    execv(argv[1], argv + 1);
    std::perror(argv[1]);
    return EXIT_FAILURE;
}

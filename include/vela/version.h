/* The library's semantic version: the one place where it is written. The build reads it from here. */
#ifndef VELA_VERSION_H
#define VELA_VERSION_H

#define VELA_VERSION_MAJOR 0
#define VELA_VERSION_MINOR 1
#define VELA_VERSION_PATCH 0

#endif

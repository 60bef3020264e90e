/* Everything that VelaCPUBase offers to a host in C. */
#ifndef VELA_VELA_H
#define VELA_VELA_H

#include <vela/audio.h>
#include <vela/colorspace.h>
#include <vela/frame.h>
#include <vela/imagemath.h>
#include <vela/math3d.h>
#include <vela/matrix.h>
#include <vela/mem.h>
#include <vela/signal.h>
#include <vela/version.h>
#include <vela/video.h>
#include <vela/videofx.h>

#endif

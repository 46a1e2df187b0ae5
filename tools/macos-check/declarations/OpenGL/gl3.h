#pragma once
#include "gl.h"

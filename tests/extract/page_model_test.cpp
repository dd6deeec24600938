#include "pelinor/page_model.h"

#include <gtest/gtest.h>

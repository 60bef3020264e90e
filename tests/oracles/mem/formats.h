#pragma once

namespace {
} // namespace

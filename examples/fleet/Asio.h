// Asio, as every file here includes it. Left alone it takes aligned allocation if a standard header comes before it, and the plain one
// otherwise: files that differ in this free each other's memory the wrong way. Here the choice is the same for all.
#pragma once

#ifndef ASIO_STANDALONE
#define ASIO_STANDALONE
#endif
#ifndef ASIO_DISABLE_STD_ALIGNED_ALLOC
#define ASIO_DISABLE_STD_ALIGNED_ALLOC
#endif

#include <asio/buffer.hpp>
#include <asio/io_context.hpp>
#include <asio/ip/address.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/read.hpp>
#include <asio/read_until.hpp>
#include <asio/signal_set.hpp>
#include <asio/steady_timer.hpp>
#include <asio/write.hpp>

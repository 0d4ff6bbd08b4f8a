#pragma once
// The one way to the device: consecutive primitives of one texture, kind and format become one draw call. A
// caller asks for room, writes vertices in place, and returns. Game thread only.
#include "Files/Graphics/RenderState.h"
#include "Files/Graphics_API/RenderDevice.h"

#include <cstddef>
#include <cstdint>

namespace vesk {

struct ShapeVertex { // 16 bytes
  float x, y, z;
  uint32_t colour; // ARGB
};
struct TexturedVertex { // 24 bytes
  float x, y, z;
  uint32_t colour;
  float u, v;
};
static_assert(sizeof(ShapeVertex) == 16 && sizeof(TexturedVertex) == 24);

inline constexpr uint32_t kRingBytes = 0x48000;       // of the ring at first, and of client memory
inline constexpr int32_t kListCapacity = 16384;       // least vertices of a buffer of the list
inline constexpr int32_t kSingleCapacity = 4096;      // of one that takes a single batch
inline constexpr TextureHandle kNoBatchTexture = ~0u; // no handle has it

struct DrawCounters {
  uint64_t batches = 0; // flushes that had something to draw
  uint64_t vertices = 0;
  uint64_t quads = 0; // six vertices of triangle lists
};

struct BatchState {
  // The join test and the write position, together in one cache line.
  int32_t batchPrimitive = -1; // -1: nothing is open
  int32_t batchStride = 0;     // as asked for: 16, 24, 36, or a format code
  int32_t batchVertexSize = 0; // bytes
  TextureHandle batchTexture = kNoBatchTexture;
  bool batchNoJoin = true;
  uint8_t* write = nullptr;
  uint8_t* end = nullptr;       // of the memory that may be written
  uint8_t* batchBase = nullptr; // where the open batch begins

  DrawCounters frame;     // of the frame in progress
  DrawCounters lastFrame; // of the last ended one
  DrawCounters total;
};

namespace detail {
extern BatchState g_batch;
uint8_t* AllocVertsSlow(Primitive primitive, TextureHandle texture, int32_t stride, int32_t count);
} // namespace detail
inline BatchState& Batch() { return detail::g_batch; }

// Where to write `count` vertices of `stride` bytes (16, 24 or 36; any other number is the code of a vertex
// format); good until the next call.
inline uint8_t* AllocVertsBytes(Primitive primitive, TextureHandle texture, int32_t stride, int32_t count) {
  BatchState& batch = detail::g_batch;
  const auto bytes = static_cast<ptrdiff_t>(batch.batchVertexSize) * count;
  if (texture == batch.batchTexture && primitive == batch.batchPrimitive && stride == batch.batchStride &&
      !batch.batchNoJoin && bytes <= batch.end - batch.write && !RenderStates().Dirty()) {
    uint8_t* at = batch.write;
    batch.write += bytes;
    return at;
  }
  return detail::AllocVertsSlow(primitive, texture, stride, count);
}
template <class Vertex> Vertex* AllocVerts(Primitive primitive, TextureHandle texture, int32_t count) {
  return reinterpret_cast<Vertex*>(AllocVertsBytes(primitive, texture, sizeof(Vertex), count));
}
// Gives back unused vertices of the last request.
void ReturnVerts(int32_t count);
// Sends the open batch, then the states that changed.
void FlushBatch();

void Batch_EndFrame();
void Batch_SetMethod(int32_t method); // 0 ring, 1 list of buffers, 2 client memory; flushes
void Batch_FreeBuffers();             // before the device goes; an open batch is dropped
struct BufferStatistics {
  int32_t buffers = 0;
  int64_t bytes = 0;
  int32_t largestWrite = 0;
};
BufferStatistics Batch_Statistics();
uint64_t Batch_FrameCounter();

} // namespace vesk

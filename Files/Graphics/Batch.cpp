#include "Files/Graphics/Batch.h"

#include "Files/Base/Console.h"
#include "Files/Base/Error.h"
#include "Files/Graphics/Graphics.h"
#include "Files/Graphics/Shader.h"
#include "Files/Graphics/Texture.h"

#include <algorithm>
#include <list>
#include <vector>

namespace vesk {

namespace detail {
BatchState g_batch;
}

namespace {

using detail::g_batch;

struct VertexBuffer {
  bool mapped = false, dynamic = true, usedThisFrame = false, byteAddressed = false;
  BufferHandle deviceBuffer = 0;
  uint32_t format = 0; // 0 for the ring
  int32_t stride = 1;  // bytes a position counts
  int32_t batchStart = 0;
  int32_t writePos = 0;
  int32_t capacity = 0;
  uint8_t* memory = nullptr; // of the mapping, at position `mappedAt`
  int32_t mappedAt = 0;
  uint64_t lastUsed = 0;
};

struct BufferState {
  std::list<VertexBuffer> buffers;
  VertexBuffer* current = nullptr;
  std::vector<uint8_t> client;
  uint64_t frameCounter = 0;
  int32_t largestWrite = 0;
};
BufferState g_buffers;

uint32_t FormatOf(int32_t stride) {
  switch (stride) {
  case 16: return kVertexPosition | kVertexColour;
  case 24: return kVertexPosition | kVertexColour | kVertexTexture;
  case 36: return kVertexPosition | kVertexNormal | kVertexColour | kVertexTexture;
  default: return static_cast<uint32_t>(stride);
  }
}

VertexBuffer* Create(uint32_t bytes) {
  IRenderDevice& device = *Graphics().device;
  VertexBuffer made;
  made.deviceBuffer = device.CreateBuffer(bytes, true);
  if (!made.deviceBuffer) {
    made.dynamic = false;
    made.deviceBuffer = device.CreateBuffer(bytes, false);
  }
  if (!made.deviceBuffer) {
    const BufferStatistics statistics = Batch_Statistics();
    ShowError("Fatal Error: Can not create vertex buffer of size %d bytes\n"
              "%d vertex buffers allocated with total size of %d KB\n",
              static_cast<int>(bytes), statistics.buffers, static_cast<int>(statistics.bytes / 1024));
    return nullptr;
  }
  return &g_buffers.buffers.emplace_back(made);
}

void Unmap(VertexBuffer& buffer) {
  if (!buffer.mapped) return;
  buffer.mapped = false;
  buffer.memory = nullptr;
  if (!Graphics().device->UnmapBuffer(buffer.deviceBuffer,
                                      static_cast<uint32_t>(buffer.mappedAt * buffer.stride),
                                      static_cast<uint32_t>(buffer.writePos * buffer.stride)))
    DebugConsole().Output("Error: Could not unlock vertex buffer");
}

// The buffer's memory from its write position on.
uint8_t* Map(VertexBuffer& buffer) {
  if (!buffer.mapped) {
    buffer.memory = Graphics().device->MapBuffer(buffer.deviceBuffer,
                                                 static_cast<uint32_t>(buffer.writePos * buffer.stride),
                                                 buffer.dynamic && buffer.writePos == 0);
    if (!buffer.memory) {
      DebugConsole().Output("Error: Could not update vertex buffer");
      return nullptr;
    }
    buffer.mapped = true;
    buffer.mappedAt = buffer.writePos;
    buffer.usedThisFrame = true;
  }
  return buffer.memory + static_cast<ptrdiff_t>(buffer.writePos - buffer.mappedAt) * buffer.stride;
}

void Release(VertexBuffer& buffer) {
  if (buffer.mapped) Unmap(buffer);
  if (g_buffers.current == &buffer) g_buffers.current = nullptr;
  Graphics().device->ReleaseBuffer(buffer.deviceBuffer);
}

VertexBuffer* FindRing(int32_t bytes) {
  VertexBuffer* ring = nullptr;
  for (VertexBuffer& buffer : g_buffers.buffers)
    if (buffer.byteAddressed) ring = &buffer;
  uint32_t size = ring ? static_cast<uint32_t>(ring->capacity) : kRingBytes;
  if (ring && bytes > ring->capacity) {
    Release(*ring);
    g_buffers.buffers.remove_if([&](const VertexBuffer& buffer) { return &buffer == ring; });
    ring = nullptr;
  }
  while (size < static_cast<uint32_t>(bytes)) size *= 2;
  if (!ring) {
    ring = Create(size);
    if (!ring) return nullptr;
    ring->byteAddressed = true;
    ring->capacity = static_cast<int32_t>(size);
  }
  if (ring->writePos + bytes > ring->capacity) {
    Unmap(*ring);
    ring->writePos = 0;
  }
  return ring;
}

VertexBuffer* FindInList(uint32_t format, int32_t stride, int32_t count) {
  for (VertexBuffer& buffer : g_buffers.buffers)
    if (!buffer.byteAddressed && buffer.format == format && buffer.capacity - buffer.writePos >= count &&
        static_cast<int64_t>(buffer.lastUsed) + 4 < static_cast<int64_t>(g_buffers.frameCounter))
      return &buffer;
  const bool single = Graphics().settings.oneBatchABuffer && g_buffers.frameCounter > 0;
  const int32_t capacity = std::max(count, single ? kSingleCapacity : kListCapacity);
  VertexBuffer* made = Create(static_cast<uint32_t>(capacity * stride));
  if (!made) return nullptr;
  made->format = format;
  made->stride = stride;
  made->capacity = capacity;
  // May be taken at once. Before the seventh frame this wraps, and the comparison is a signed one.
  made->lastUsed = g_buffers.frameCounter - 7;
  return made;
}

uint8_t* ClientMemory(size_t bytes) {
  size_t size = std::max<size_t>(g_buffers.client.size(), kRingBytes);
  while (size < bytes) size *= 2;
  g_buffers.client.resize(size);
  g_batch.end = g_buffers.client.data() + size;
  return g_buffers.client.data();
}

uint8_t* FindRoom(uint32_t format, int32_t stride, int32_t count) {
  const int32_t bytes = stride * count;
  const int32_t method = Graphics().bufferMethod;
  g_buffers.current = nullptr;
  if (Graphics().device && method != 2) {
    VertexBuffer* buffer = method == 1 ? FindInList(format, stride, count) : FindRing(bytes);
    uint8_t* memory = buffer ? Map(*buffer) : nullptr;
    if (memory) {
      g_buffers.current = buffer;
      buffer->batchStart = buffer->writePos;
      g_batch.end = memory + static_cast<ptrdiff_t>(buffer->capacity - buffer->writePos) * buffer->stride;
      return memory;
    }
  }
  return ClientMemory(static_cast<size_t>(bytes)); // the frame goes on
}

void CloseBatch() {
  g_batch.batchPrimitive = -1;
  g_batch.batchNoJoin = true;
  g_batch.batchStride = g_batch.batchVertexSize = 0;
  g_batch.batchTexture = kNoBatchTexture;
  g_batch.write = g_batch.end = g_batch.batchBase = nullptr;
}

int32_t PrimitiveCount(int32_t primitive, int32_t vertices) {
  switch (primitive) {
  case pr_pointlist: return vertices;
  case pr_linelist: return vertices / 2;
  case pr_linestrip: return vertices - 1;
  case pr_trianglelist: return vertices / 3;
  default: return vertices - 2;
  }
}

void SendBatch(IRenderDevice& device) {
  const int32_t vertices =
      static_cast<int32_t>((g_batch.write - g_batch.batchBase) / g_batch.batchVertexSize);
  VertexBuffer* buffer = g_buffers.current;
  if (buffer) {
    buffer->writePos = buffer->batchStart + vertices * g_batch.batchVertexSize / buffer->stride;
    g_buffers.largestWrite = std::max(g_buffers.largestWrite, buffer->writePos);
    Unmap(*buffer);
    if (Graphics().settings.oneBatchABuffer && !buffer->byteAddressed) buffer->writePos = buffer->capacity;
  }
  if (PrimitiveCount(g_batch.batchPrimitive, vertices) < 1 || !Texture_Ready(g_batch.batchTexture)) return;
  for (DrawCounters* counters : {&g_batch.frame, &g_batch.total}) {
    ++counters->batches;
    counters->vertices += static_cast<uint64_t>(vertices);
    if (g_batch.batchPrimitive == pr_trianglelist) counters->quads += static_cast<uint64_t>(vertices / 6);
  }
  device.BindTexture(Shader_BaseStage(), g_batch.batchTexture);
  const auto primitive = static_cast<Primitive>(g_batch.batchPrimitive);
  const uint32_t format = FormatOf(g_batch.batchStride);
  if (buffer)
    device.Draw(primitive, format, g_batch.batchVertexSize, buffer->deviceBuffer,
                static_cast<uint32_t>(buffer->batchStart * buffer->stride), vertices);
  else
    device.DrawFromMemory(primitive, format, g_batch.batchVertexSize, g_batch.batchBase, vertices);
}

} // namespace

uint8_t* detail::AllocVertsSlow(Primitive primitive, TextureHandle texture, int32_t stride, int32_t count) {
  FlushBatch();
  g_batch.batchPrimitive = primitive;
  g_batch.batchTexture = texture;
  g_batch.batchStride = stride;
  g_batch.batchVertexSize = std::max(VertexStride(FormatOf(stride)), 1);
  g_batch.batchBase = FindRoom(FormatOf(stride), g_batch.batchVertexSize, count);
  g_batch.batchNoJoin =
      primitive == pr_linestrip || primitive == pr_trianglestrip || primitive == pr_trianglefan;
  g_batch.write = g_batch.batchBase + static_cast<ptrdiff_t>(g_batch.batchVertexSize) * count;
  return g_batch.batchBase;
}

void ReturnVerts(int32_t count) {
  if (g_batch.batchPrimitive < 0) return;
  g_batch.write =
      std::max(g_batch.batchBase, g_batch.write - static_cast<ptrdiff_t>(count) * g_batch.batchVertexSize);
}

void FlushBatch() {
  IRenderDevice* device = Graphics().device.get();
  if (device && g_batch.batchPrimitive >= 0) SendBatch(*device);
  CloseBatch();
  if (device) RenderStates().SendDirty(*device);
}

void Batch_EndFrame() {
  for (VertexBuffer& buffer : g_buffers.buffers) {
    Unmap(buffer);
    if (!buffer.usedThisFrame) continue;
    if (!buffer.byteAddressed) buffer.writePos = 0;
    buffer.lastUsed = g_buffers.frameCounter;
    buffer.usedThisFrame = false;
  }
  ++g_buffers.frameCounter;
  g_buffers.current = nullptr;
  CloseBatch();
  g_batch.lastFrame = g_batch.frame;
  g_batch.frame = {};
}

void Batch_SetMethod(int32_t method) {
  FlushBatch();
  Graphics().bufferMethod = method;
}

void Batch_FreeBuffers() {
  CloseBatch();
  if (Graphics().device)
    for (VertexBuffer& buffer : g_buffers.buffers) Release(buffer);
  g_buffers = {};
  g_batch = {};
}

BufferStatistics Batch_Statistics() {
  BufferStatistics result;
  for (const VertexBuffer& buffer : g_buffers.buffers) {
    ++result.buffers;
    result.bytes += int64_t{buffer.capacity} * buffer.stride;
  }
  result.largestWrite = g_buffers.largestWrite;
  return result;
}

uint64_t Batch_FrameCounter() { return g_buffers.frameCounter; }

} // namespace vesk

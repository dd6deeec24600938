set(PELINOR_QUEUE_SOURCES
  queue/queue_entry.cpp
  queue/queue.cpp
  queue/queue_order.cpp
)

pelinor_add_tests(queue
  tests/queue/queue_entry_test.cpp
  tests/queue/queue_test.cpp
  tests/queue/queue_order_test.cpp
)

// Appended to the reference's header, which declares only the older scheduling on a run loop.
typedef struct dispatch_queue_s* dispatch_queue_t;
extern "C" dispatch_queue_t dispatch_get_main_queue();
extern "C" void FSEventStreamSetDispatchQueue(FSEventStreamRef stream, dispatch_queue_t queue);

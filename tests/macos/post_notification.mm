// post_notification NAME: posts a distributed notification, as the system does when the appearance changes.
#import <Foundation/Foundation.h>

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
  [[NSDistributedNotificationCenter defaultCenter]
      postNotificationName:[NSString stringWithUTF8String:argv[1]]
                    object:nil
                  userInfo:nil
        deliverImmediately:YES];
  [pool release];
  return 0;
}

// SPDX-License-Identifier: AGPL-3.0-or-later
#include "platform/Actor.h"

namespace quillo {

Actor::Actor(const QString& name)
{
    m_pool.setObjectName(name);
    m_pool.setMaxThreadCount(1);
}

Actor::~Actor()
{
    m_pool.waitForDone();
}

void Actor::start(std::unique_ptr<TaskBase> task)
{
    task->handOver();
    m_pool.start(task.release());
}

} // namespace quillo
